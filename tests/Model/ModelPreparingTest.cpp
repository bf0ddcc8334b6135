// Models as plain arrays: what they hold, where they may come from, and how they get to the GPU.
#include "support/GLTest.h"
#include "support/ModelDifferences.h"
#include "support/ModelReadBack.h"
#include "support/PreparedContents.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/VertexArrayObject.h>
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelPreparing.h>
#include <OrvModel/ModelUploading.h>

#include <gmock/gmock.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QVector3D>

#include <memory>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Prepared = std::unique_ptr<PreparedModel>;

const QByteArray Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

Prepared prepared(const QString &path)
{
    const MessageCapture silence;
    QString error = UploadedModel::untouchedError();
    Prepared model = prepareModelFromOBJFile(path, error);
    EXPECT_TRUE(model) << error.toStdString();
    EXPECT_EQ(error, UploadedModel::untouchedError());
    return model ? std::move(model) : std::make_unique<PreparedModel>();
}

Prepared prepared(QIODevice &device, const PrepareOptions &options = {})
{
    const MessageCapture silence;
    QString error;
    Prepared model = prepareModelFromOBJ(device, error, options);
    EXPECT_TRUE(model) << error.toStdString();
    return model ? std::move(model) : std::make_unique<PreparedModel>();
}

std::vector<unsigned> indicesOf(const PreparedModel &model)
{
    return {model.indices(), model.indices() + model.indexCount()};
}

/// The values of an attribute; empty where there is none.
std::vector<float> valuesOf(const PreparedModel &model, const char *name)
{
    for (const PreparedModel::Attribute &attribute : model.attributes()) {
        if (attribute.name == QLatin1String(name))
            return {attribute.values,
                    attribute.values + model.vertexCount() * size_t(attribute.components)};
    }
    return {};
}

// ---- The arrays -------------------------------------------------------------------

class PreparedModels : public GLTest
{
protected:
    /// What is prepared is what the loader uploads, and so is what is uploaded of it.
    static void expectSameAsLoaded(const QString &path)
    {
        UploadedModel loaded = loadWithLibrary(path);
        const Prepared model = prepared(path);
        EXPECT_EQ(model->isEmpty(), loaded.bundle().indices.empty());
        const UploadedModel contents = contentsOf(*model);
        loaded.messages.clear(); // captured elsewhere
        EXPECT_THAT(differences(loaded, contents), IsEmpty());

        GPUModel onGPU;
        EXPECT_TRUE(uploadPreparedModel(*model, onGPU));
        UploadedModel uploaded;
        uploaded.bundles = readBack(onGPU);
        EXPECT_THAT(differences(loaded, uploaded), IsEmpty());
    }

    TemporaryModel _directory;
};

TEST_F(PreparedModels, AreWhatTheLoaderUploads)
{
    for (const char *folder : {ORV_SAMPLES_DIR, ORV_SHARED_MODELS_DIR}) {
        const QDir models(QString::fromLatin1(folder));
        for (const QString &file : models.entryList({QStringLiteral("*.obj")}, QDir::Files)) {
            SCOPED_TRACE(file.toStdString());
            expectSameAsLoaded(models.filePath(file));
        }
    }
}

TEST_F(PreparedModels, AreWhatTheLoaderUploadsOfUTF16)
{
    const QString text = QString::fromLatin1(Triangle);
    QByteArray bytes("\xff\xfe", 2);
    bytes.append(reinterpret_cast<const char *>(text.utf16()), 2 * text.size());
    expectSameAsLoaded(_directory.write(QStringLiteral("utf-16.obj"), bytes));
}

TEST_F(PreparedModels, ListTheirAttributesPositionsFirst)
{
    const QString path =
        _directory.write(QStringLiteral("m.obj"),
                         "v 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nvn 0 0 1\nf 1/1/1 2/1/1 3/1/1\n");
    const Prepared model = prepared(path);
    std::vector<std::string> names;
    for (const PreparedModel::Attribute &attribute : model->attributes())
        names.push_back(attribute.name.toStdString() + " " + std::to_string(attribute.components));
    EXPECT_THAT(names, ElementsAre("va_Vertex 3", "va_Normal 3", "va_TexCoord 2"));
    EXPECT_FALSE(model->normalsAreGenerated());
    EXPECT_TRUE(
        prepared(_directory.write(QStringLiteral("n.obj"), Triangle))->normalsAreGenerated());
}

TEST_F(PreparedModels, HaveABoxAroundWhatIsDrawn)
{
    const Prepared model = prepared(
        _directory.write(QStringLiteral("m.obj"),
                         "v 9 9 9\nv -7 0 0\nv nan 0 0\nv 0 0 0\nv 1 0 0\nv 0 2 0\nf 4 5 6\n"
                         "f 4 5 3\nusemtl unknown\nf 2 4 5\n"));
    EXPECT_EQ(model->minimum(), QVector3D(0, 0, 0));
    EXPECT_EQ(model->maximum(), QVector3D(1, 2, 0));
    const PreparedModel empty;
    EXPECT_EQ(empty.minimum(), QVector3D(0, 0, 0));
    EXPECT_EQ(empty.maximum(), QVector3D(0, 0, 0));
}

TEST_F(PreparedModels, KeepTheirArraysWhenMoved)
{
    Prepared model = prepared(_directory.write(QStringLiteral("m.obj"), Triangle));
    const quint32 *indices = model->indices();
    const float *positions = model->attributes().first().values;
    PreparedModel moved = std::move(*model);
    EXPECT_EQ(moved.indices(), indices);
    EXPECT_EQ(moved.attributes().first().values, positions);
    EXPECT_TRUE(model->isEmpty());
    EXPECT_EQ(model->indices(), nullptr);
    EXPECT_THAT(model->commands(), IsEmpty());
}

TEST_F(PreparedModels, OfNothingAreEmpty)
{
    const Prepared model = prepared(_directory.write(QStringLiteral("m.obj"), "v 0 0 0\n"));
    EXPECT_TRUE(model->isEmpty());
    EXPECT_EQ(model->vertexCount(), 0u);
    EXPECT_EQ(model->indices(), nullptr);
    EXPECT_THAT(model->attributes(), IsEmpty());
    EXPECT_TRUE(model->material(0).name().isEmpty());
    GPUModel onGPU;
    EXPECT_TRUE(uploadPreparedModel(*model, onGPU));
    EXPECT_EQ(onGPU.bundleCount(), 0);
}

TEST(Preparing, NeedsNoOpenGLAndAnyThreadWillDo)
{
    const NoCurrentContext none;
    const TemporaryModel directory;
    const QString path = directory.write(QStringLiteral("m.obj"), Triangle);
    const MessageCapture silence;
    std::vector<std::vector<unsigned>> indices(8);
    {
        std::vector<std::thread> threads;
        for (auto &own : indices)
            threads.emplace_back([&own, &path] {
                QString error;
                own = indicesOf(*prepareModelFromOBJFile(path, error));
            });
        for (std::thread &thread : threads)
            thread.join();
    }
    for (const auto &own : indices)
        EXPECT_THAT(own, ElementsAre(0u, 1u, 2u));
}

// ---- Failures ---------------------------------------------------------------------

TEST(Preparing, TellsTheLoadersMessages)
{
    const TemporaryModel directory;
    QString error;
    const QString missing = directory.path(QStringLiteral("gone.obj"));
    EXPECT_FALSE(prepareModelFromOBJFile(missing, error));
    EXPECT_EQ(error, QStringLiteral("Failed to load OBJ file '%1'").arg(missing));
    const QString path = directory.write(QStringLiteral("m.obj"), "mtllib gone.mtl\n");
    EXPECT_FALSE(prepareModelFromOBJFile(path, error));
    EXPECT_EQ(error, QStringLiteral("Failed to load MTL file '%1'")
                         .arg(directory.path(QStringLiteral("gone.mtl"))));
}

/// Why a load fails, with the message that goes with it.
struct Failure
{
    QString error;
    QString reason;
};

Failure failureOf(const QString &path)
{
    const MessageCapture silence;
    Failure failure;
    PrepareOptions options;
    options.reason = &failure.reason;
    EXPECT_FALSE(prepareModelFromOBJFile(path, failure.error, options));
    return failure;
}

TEST(Preparing, TellsWhy)
{
    const TemporaryModel directory;
    directory.write(QStringLiteral("folder/x.obj"), "");
    const QString pipe = directory.path(QStringLiteral("pipe.obj"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const struct
    {
        const char *name;
        QString path;
        const char *reason;
    } rows[] = {
        {"missing", directory.path(QStringLiteral("gone.obj")), "no such file"},
        {"folder", directory.path(QStringLiteral("folder")), "is a directory"},
        {"pipe", pipe, "not a regular file"},
        {"library missing", directory.write(QStringLiteral("m.obj"), "mtllib gone.mtl\n"),
         "no such file"},
        {"library a folder", directory.write(QStringLiteral("n.obj"), "mtllib folder\n"),
         "is a directory"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(failureOf(row.path).reason, QLatin1String(row.reason)) << row.name;
    if (geteuid() != 0) { // who may read everything is never refused
        const QString locked = directory.write(QStringLiteral("locked.obj"), Triangle);
        QFile::setPermissions(locked, {});
        EXPECT_EQ(failureOf(locked).reason, QStringLiteral("permission denied"));
    }
}

TEST(Preparing, LeavesTheReasonAloneWhereNothingFails)
{
    const TemporaryModel directory;
    const MessageCapture silence;
    QString error;
    QString reason = QStringLiteral("untouched");
    PrepareOptions options;
    options.reason = &reason;
    EXPECT_TRUE(prepareModelFromOBJFile(directory.write(QStringLiteral("m.obj"), Triangle), error,
                                        options));
    EXPECT_EQ(reason, QStringLiteral("untouched"));
}

// ---- Devices ----------------------------------------------------------------------

TEST_F(PreparedModels, ComeFromBuffersToo)
{
    QByteArray bytes = "not a model\n" + Triangle;
    QBuffer buffer(&bytes);
    ASSERT_TRUE(buffer.open(QIODevice::ReadOnly));
    buffer.seek(12); // read from where it is
    EXPECT_THAT(indicesOf(*prepared(buffer)), ElementsAre(0u, 1u, 2u));
}

TEST_F(PreparedModels, ComeFromOpenFilesWithTheirLibraries)
{
    _directory.write(QStringLiteral("m.mtl"), "newmtl red\nKd 1 0 0\n");
    QFile file(_directory.write(QStringLiteral("m.obj"), "mtllib m.mtl\nusemtl red\n" + Triangle));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const Prepared model = prepared(file);
    ASSERT_EQ(model->commands().size(), 1);
    EXPECT_EQ(model->commands().first().material, QStringLiteral("red"));
}

TEST_F(PreparedModels, FindLibrariesWithTheCallersOpener)
{
    std::vector<QString> asked;
    PrepareOptions options;
    options.openLibrary = [&](const QString &path) -> std::unique_ptr<QIODevice> {
        asked.push_back(path);
        auto library = std::make_unique<QBuffer>();
        library->setData("newmtl red\r\nmap_Kd a.png\r\n");
        return library; // closed: it is opened by whoever reads it
    };
    for (const QByteArray &encoding : {QByteArray("UTF-8"), QByteArray("UTF-16LE")}) {
        SCOPED_TRACE(encoding.constData());
        asked.clear();
        const QString text = QStringLiteral("mtllib sub/m.mtl\nmtllib sub/m.mtl\nusemtl red\n") +
                             QString::fromLatin1(Triangle);
        QFile file(_directory.path(QStringLiteral("model.obj")));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
        if (encoding == "UTF-8")
            file.write(text.toUtf8());
        else
            file.write("\xff\xfe" +
                       QByteArray(reinterpret_cast<const char *>(text.utf16()), 2 * text.size()));
        file.seek(0);
        const Prepared model = prepared(file, options);
        const QString path = _directory.path(QStringLiteral("sub/m.mtl"));
        EXPECT_THAT(asked, ElementsAre(path));
        ASSERT_EQ(model->commands().size(), 1);
        EXPECT_EQ(model->commands().first().material, QStringLiteral("red"));
        EXPECT_EQ(model->material(0).texturePath(QStringLiteral("map_Kd")),
                  _directory.path(QStringLiteral("sub/a.png")));
    }
}

TEST(Preparing, FailsWhereTheOpenerFindsNothing)
{
    QByteArray bytes = "mtllib m.mtl\n";
    QBuffer buffer(&bytes);
    ASSERT_TRUE(buffer.open(QIODevice::ReadOnly));
    QString error;
    QString reason;
    PrepareOptions options;
    options.reason = &reason;
    options.openLibrary = [](const QString &) { return nullptr; };
    EXPECT_FALSE(prepareModelFromOBJ(buffer, error, options));
    EXPECT_EQ(error, QStringLiteral("Failed to load MTL file '%1'")
                         .arg(QDir::current().absoluteFilePath(QStringLiteral("m.mtl"))));
    EXPECT_EQ(reason, QStringLiteral("no such file"));
}

TEST(Preparing, PassesOnWhatTheOpenerThrows)
{
    QByteArray bytes = "mtllib m.mtl\n";
    QBuffer buffer(&bytes);
    ASSERT_TRUE(buffer.open(QIODevice::ReadOnly));
    QString error;
    PrepareOptions options;
    options.openLibrary = [](const QString &) -> std::unique_ptr<QIODevice> { throw 7; };
    EXPECT_THROW(prepareModelFromOBJ(buffer, error, options), int);
}

TEST(Preparing, RefusesADeviceThatIsNotOpen)
{
    QBuffer buffer;
    QString error;
    QString reason;
    PrepareOptions options;
    options.reason = &reason;
    EXPECT_FALSE(prepareModelFromOBJ(buffer, error, options));
    EXPECT_EQ(error, QStringLiteral("Failed to load OBJ file ''"));
    EXPECT_EQ(reason, QStringLiteral("not open for reading"));
}

// ---- Builders ---------------------------------------------------------------------

/// A quad and a triangle in two groups, with positions, one more float attribute, and one of bytes.
void fill(ModelBuilder &builder)
{
    const float positions[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
    const float weights[] = {0.5f, 0.25f};
    const unsigned char bytes[] = {7};
    const unsigned counts[] = {4, 3};
    const unsigned corners[] = {0, 1, 2, 3, 0, 1, 2};
    const unsigned weightOf[] = {0, 0, 0, 0, 1, 1, 1};
    const unsigned byteOf[] = {0, 0, 0, 0, 0, 0, 0};
    const unsigned first = 0;
    const unsigned second = 1;
    builder.createMaterialGroup(QStringLiteral("a"), InstanceData(QStringLiteral("A")), -1, 0);
    builder.createMaterialGroup(QStringLiteral("b"), InstanceData(QStringLiteral("B")), -1, 0);
    builder.createVertexAttribute(QStringLiteral("position"), 3, GL_FLOAT, 0, 0);
    builder.addValuesToVertexAttribute(QStringLiteral("position"), 12, positions, GL_FLOAT);
    builder.addIndicesToVertexAttribute(QStringLiteral("position"), 7, corners);
    builder.createVertexAttribute(QStringLiteral("weight"), 1, GL_FLOAT, 0, 0);
    builder.addValuesToVertexAttribute(QStringLiteral("weight"), 2, weights, GL_FLOAT);
    builder.addIndicesToVertexAttribute(QStringLiteral("weight"), 7, weightOf);
    builder.createVertexAttribute(QStringLiteral("byte"), 1, GL_UNSIGNED_BYTE, 0, 0);
    builder.addValuesToVertexAttribute(QStringLiteral("byte"), 1, bytes, GL_UNSIGNED_BYTE);
    builder.addIndicesToVertexAttribute(QStringLiteral("byte"), 7, byteOf);
    builder.addVertexCountsToFaces(2, counts);
    builder.addFacesToMaterialGroup(QStringLiteral("a"), 1, &first, QString());
    builder.addFacesToMaterialGroup(QStringLiteral("b"), 1, &second, QString());
}

TEST_F(PreparedModels, OfABuilderAreACopyOfIt)
{
    const MessageCapture silence;
    ModelBuilder builder({}, 0);
    fill(builder);
    const Prepared model = prepareModel(builder, QStringLiteral("position"));
    ASSERT_TRUE(model);
    builder.clear();
    // The quad's four vertices, then the triangle's three, which differ by their weight.
    EXPECT_EQ(model->vertexCount(), 7u);
    EXPECT_THAT(valuesOf(*model, "weight"),
                ElementsAre(0.5f, 0.5f, 0.5f, 0.5f, 0.25f, 0.25f, 0.25f));
    EXPECT_EQ(model->attributes().size(), 2); // without the bytes
    ASSERT_EQ(model->commands().size(), 2);
    for (int i = 0; i < 2; ++i) {
        const PreparedModel::Command command = model->commands().at(i);
        const bool isQuad = command.material == QStringLiteral("a");
        EXPECT_EQ(command.indexCount, isQuad ? 6u : 3u);
        EXPECT_EQ(model->material(i).name(), isQuad ? QStringLiteral("A") : QStringLiteral("B"));
    }
    EXPECT_FALSE(model->normalsAreGenerated());

    GPUModel onGPU;
    ASSERT_TRUE(uploadPreparedModel(*model, onGPU));
    ASSERT_EQ(onGPU.bundleCount(), 1);
    EXPECT_EQ(onGPU.bundle(0)->VAO()->attributes().size(), 3); // with the bytes
}

TEST(Preparing, GivesNothingOfABuilderThatCannotBeUploaded)
{
    ModelBuilder empty({}, 0);
    EXPECT_FALSE(prepareModel(empty, QStringLiteral("position")));
    ModelBuilder builder({}, 0);
    fill(builder);
    EXPECT_FALSE(prepareModel(builder, QStringLiteral("unknown")));
    EXPECT_FALSE(prepareModel(builder, QStringLiteral("weight")));
}

// ---- Uploads ----------------------------------------------------------------------

class UploadsInSteps : public PreparedModels
{
protected:
    UploadsInSteps() : _model(prepared(_directory.write(QStringLiteral("m.obj"), Triangle))) {}

    const Prepared _model;
    GPUModel _onGPU;
};

TEST_F(UploadsInSteps, ShowTheModelOnlyWhenAllIsThere)
{
    ModelUpload upload(*_model, _onGPU);
    EXPECT_EQ(upload.fraction(), 0.0);
    double last = 0.0;
    int steps = 0;
    while (upload.step()) {
        ++steps;
        EXPECT_EQ(_onGPU.bundleCount(), 0);
        EXPECT_GT(upload.fraction(), last);
        EXPECT_FALSE(upload.isFinished());
        last = upload.fraction();
    }
    EXPECT_EQ(steps, 3); // the indices, the positions, the normals; then the bundle
    EXPECT_TRUE(upload.isFinished());
    EXPECT_EQ(upload.fraction(), 1.0);
    EXPECT_EQ(_onGPU.bundleCount(), 1);
    EXPECT_FALSE(upload.step());
    EXPECT_EQ(_onGPU.bundleCount(), 1);
}

TEST_F(UploadsInSteps, LeaveNothingBehindWhenGivenUp)
{
    for (int steps = 0; steps <= 3; ++steps) {
        ModelUpload upload(*_model, _onGPU);
        for (int i = 0; i < steps; ++i)
            EXPECT_TRUE(upload.step());
    }
    EXPECT_EQ(_onGPU.bundleCount(), 0);
}

TEST_F(UploadsInSteps, FailWithoutAContext)
{
    const NoCurrentContext none;
    ModelUpload upload(*_model, _onGPU);
    EXPECT_FALSE(upload.step());
    EXPECT_FALSE(upload.isFinished());
    EXPECT_FALSE(uploadPreparedModel(*_model, _onGPU));
    EXPECT_EQ(_onGPU.bundleCount(), 0);
}

TEST_F(UploadsInSteps, MayBeRepeated)
{
    EXPECT_TRUE(uploadPreparedModel(*_model, _onGPU));
    EXPECT_TRUE(uploadPreparedModel(*_model, _onGPU));
    EXPECT_EQ(_onGPU.bundleCount(), 2);
}

} // namespace
