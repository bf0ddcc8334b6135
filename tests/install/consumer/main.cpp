// Calls something of each library, and prints what it gives. In particular, nothing is included
// beyond what the headers' own examples show.
#include <OrvCheck/ModelCheck.h>
#include <OrvGL/HeadlessContext.h>
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>
#include <OrvModel/ModelPreparing.h>

#include <cstdio>

using namespace Halvard::Orv;

namespace {

bool prepareAndCheck(const QString &fileName)
{
    QString error;
    const std::unique_ptr<PreparedModel> prepared = prepareModelFromOBJFile(fileName, error);
    if (!prepared)
        return false;
    std::printf("%u vertices, %u triangles\n", prepared->vertexCount(), prepared->indexCount() / 3);

    ModelFindings findings;
    if (checkModel(fileName, findings, error) != CheckStatus::Done)
        return false;
    std::printf("%d findings\n", int(findings.findings.size()));
    return true;
}

bool loadAndReadBack(const QString &fileName)
{
    const auto context = HeadlessContext::create();
    if (!context || !context->makeCurrent())
        return false;
    ModelBuilder builder({}, 0);
    const float corner[] = {0, 0, 0};
    builder.createVertexAttribute(QStringLiteral("va_Vertex"), 3, GL_FLOAT, 0, 0);
    builder.addValuesToVertexAttribute(QStringLiteral("va_Vertex"), 3, corner, GL_FLOAT);
    std::printf("3 components of type 0x%x\n", GL_FLOAT);

    QString error;
    const std::unique_ptr<GPUModel> model(loadModelFromOBJFile(fileName, error));
    if (!model)
        return false;
    std::printf("%d bundle\n", model->bundleCount());
    return true;
}

} // namespace

int main(int, char **arguments)
{
#if defined(ORVMODEL_STATIC) && defined(ORVCHECK_STATIC)
    std::puts("shared or static: static");
#elif !defined(ORVMODEL_STATIC) && !defined(ORVCHECK_STATIC)
    std::puts("shared or static: shared");
#endif
    const QString fileName = QString::fromLocal8Bit(arguments[1]);
    return prepareAndCheck(fileName) && loadAndReadBack(fileName) ? 0 : 1;
}
