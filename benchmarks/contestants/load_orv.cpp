// Loads a model with this library and prints what it took, as JSON.
//
//     load_orv FILE.obj prepare THREADS [LOADS]
//     load_orv FILE.obj bytes|lines [LOADS]
//
// "prepare" makes arrays and knows nothing of OpenGL; with more threads than one, those beside the
// calling one are a pool's. "bytes" and "lines" upload them, too. Time and memory of the driver are
// then those of glBufferData(), through which all of the data goes; everything else counts as the
// library's own. With LOADS above 1 the load with the median of the time without the driver is
// printed, and the least CPU time of any.
#include "Measurement.h"

#include "OBJPreparing.h"

#include <OrvModel/ModelPreparing.h>

#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/HeadlessContext.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtCore/QThreadPool>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Halvard::Orv;

namespace {

Measurement current;
PFNGLBUFFERDATAPROC driverBufferData = nullptr;

void APIENTRY measuredBufferData(GLenum target, GLsizeiptr size, const void *data, GLenum usage)
{
    if (current.peakBeforeDriver == 0)
        current.peakBeforeDriver = residentPeak();
    const Moment begin;
    driverBufferData(target, size, data, usage);
    const Moment end;
    current.driverWall += end.wall - begin.wall;
    current.driverCPU += end.cpu - begin.cpu;
}

/// Puts measuredBufferData() before the driver's function.
void watchDriver()
{
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, 4, nullptr, GL_STATIC_DRAW); // makes epoxy look it up
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glDeleteBuffers(1, &buffer);
    driverBufferData = epoxy_glBufferData;
    epoxy_glBufferData = measuredBufferData;
}

bool upload(const QString &fileName, LoaderPath path, PreparationReport &report)
{
    current = {};
    const long before = residentNow();
    QString error;
    GPUModel model;
    const Moment begin;
    QFile file(fileName);
    const PrepareOptions options;
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    OBJPreparation preparation(file, fileName, path, {}, options);
    if (!preparation.read(error))
        return false;
    const std::unique_ptr<PreparedModelData> prepared = preparation.prepare();
    report = prepared->report;
    uploadModel(std::move(prepared->input), OpenGLDeviceContext::current(), model);
    const Moment end;
    if (model.bundleCount() == 0)
        return false;
    current.wall = end.wall - begin.wall;
    current.cpu = end.cpu - begin.cpu;
    current.peak = residentPeak() - before;
    current.peakBeforeDriver -= before;
    current.vertices = model.bundle(0)->vertexCount();
    current.triangles = static_cast<size_t>(model.bundle(0)->indexCount()) / 3;
    return true;
}

/// What \p load noted in `current`, each time.
/// \param report of the last load.
bool measure(int loads, const std::function<bool(PreparationReport &)> &load,
             std::vector<Measurement> &all, PreparationReport &report)
{
    for (int i = 0; i < loads; ++i) {
        report = {};
        if (!load(report))
            return false;
        all.push_back(current);
    }
    return true;
}

bool prepare(const QString &fileName, QThreadPool *pool, PreparationReport &report)
{
    current = {};
    const long before = residentNow();
    QString error;
    PrepareOptions options;
    options.threadPool = pool;
    const Moment begin;
    const std::unique_ptr<PreparedModel> model = prepareModelFromOBJFile(fileName, error, options);
    const Moment end;
    if (!model || model->isEmpty())
        return false;
    report = model->report();
    current.wall = end.wall - begin.wall;
    current.cpu = end.cpu - begin.cpu;
    current.peak = current.peakBeforeDriver = residentPeak() - before;
    current.vertices = model->vertexCount();
    current.triangles = model->indexCount() / 3;
    return true;
}

void printMedian(std::vector<Measurement> all, const PreparationReport &report)
{
    std::sort(all.begin(), all.end(), [](const Measurement &a, const Measurement &b) {
        return a.wall - a.driverWall < b.wall - b.driverWall;
    });
    const auto least =
        std::min_element(all.begin(), all.end(), [](const Measurement &a, const Measurement &b) {
            return a.cpu - a.driverCPU < b.cpu - b.driverCPU;
        });
    print(all[all.size() / 2]);
    std::printf(", \"leastCPU\": %.3f", least->cpu - least->driverCPU);
    const auto ms = [](qint64 nanoseconds) { return 1e-6 * static_cast<double>(nanoseconds); };
    std::printf(", \"stages\": {\"read\": %.3f, \"weld\": %.3f, \"triangulate\": %.3f, "
                "\"normals\": %.3f}}\n",
                ms(report.stages.read), ms(report.stages.weld), ms(report.stages.triangulate),
                ms(report.stages.normals));
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 3)
        return 2;
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    const QString fileName = QFile::decodeName(argv[1]);
    const std::string mode = argv[2];
    const auto number = [&](int i) { return argc > i ? std::atoi(argv[i]) : 1; };

    PreparationReport report;
    std::vector<Measurement> all;
    if (mode == "prepare") {
        QThreadPool pool;
        const int others = number(3) - 1;
        pool.setMaxThreadCount(others);
        const auto load = [&](PreparationReport &of) {
            return prepare(fileName, others > 0 ? &pool : nullptr, of);
        };
        if (!measure(number(4), load, all, report))
            return 1;
    } else {
        const auto context = HeadlessContext::create();
        if (!context || !context->makeCurrent())
            return 2;
        watchDriver();
        const LoaderPath path = mode == "lines" ? LoaderPath::Lines : LoaderPath::Fast;
        const auto load = [&](PreparationReport &of) { return upload(fileName, path, of); };
        if (!measure(number(3), load, all, report))
            return 1;
    }
    printMedian(std::move(all), report);
    return 0;
}
