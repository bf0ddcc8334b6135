// What happens between reading an OBJ file and uploading it, on models as large as
// files of some 230 MB.
//
//     bench_prepare [--benchmark_...] [MODEL.obj...]
//
// Every model given is repeated side by side up to that size. Without any, there
// are a sheet of triangles, one of quads with texture coordinates, and loose
// triangles none of which shares a position line with another.
//
// The counters are the best CPU milliseconds of each stage.
#include "Preparing/CornerWelding.h"
#include "Preparing/FaceSums.h"
#include "Preparing/FaceTriangles.h"
#include "Preparing/GeometryPreparing.h"
#include "Reports/CurrentReport.h"

#include <OrvModel/OBJReader.h>
#include <OrvModel/TriMeshVertexNormals.h>

#include <benchmark/benchmark.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLoggingCategory>
#include <QtCore/QTextStream>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

using namespace Halvard::Orv;

namespace {

constexpr size_t FileBytes = 230u << 20;

/// Bytes of text that stand for a value or a corner in files of this size.
constexpr size_t PositionBytes = 29;
constexpr size_t NormalBytes = 26;
constexpr size_t TexCoordBytes = 20;
constexpr size_t IndexBytes = 8;

struct Model
{
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<float> texCoords;
    /// Per corner, one after the other, the indices of the attributes that exist.
    std::vector<quint32> positionIndices;
    std::vector<quint32> normalIndices;
    std::vector<quint32> texCoordIndices;
    std::vector<quint32> cornerCounts;

    size_t textBytes() const
    {
        return positions.size() / 3 * PositionBytes + normals.size() / 3 * NormalBytes +
               texCoords.size() / 2 * TexCoordBytes + 2 * cornerCounts.size() +
               IndexBytes *
                   (positionIndices.size() + normalIndices.size() + texCoordIndices.size());
    }
};

void appendAll(GrowArray<float> &to, const std::vector<float> &from)
{
    std::copy(from.begin(), from.end(), to.reserveMore(from.size()));
    to.commit(from.size());
}

void appendAll(GrowArray<quint32> &to, const std::vector<quint32> &from, size_t shift)
{
    quint32 *out = to.reserveMore(from.size());
    for (const quint32 index : from)
        *out++ = index + static_cast<quint32>(shift);
    to.commit(from.size());
}

/// The longest side of the bounding box.
float extentOf(const std::vector<float> &positions)
{
    float extent = 0.0f;
    for (size_t axis = 0; axis < 3; ++axis) {
        float low = positions.at(axis);
        float high = low;
        for (size_t i = axis; i < positions.size(); i += 3) {
            low = std::min(low, positions[i]);
            high = std::max(high, positions[i]);
        }
        extent = std::max(extent, high - low);
    }
    return extent;
}

/// Copies of the model on a grid, as one file.
OBJGeometry repeated(const Model &model)
{
    const size_t copies = std::max<size_t>(1, FileBytes / model.textBytes());
    const float pitch = 1.1f * extentOf(model.positions);
    OBJGeometry geometry;
    for (size_t copy = 0; copy < copies; ++copy) {
        const float offset[3] = {pitch * static_cast<float>(copy % 16),
                                 pitch * static_cast<float>(copy / 16 % 16),
                                 pitch * static_cast<float>(copy / 256)};
        const size_t positionShift = geometry.positions.valueCount();
        float *out = geometry.positions.values.reserveMore(model.positions.size());
        for (size_t i = 0; i < model.positions.size(); ++i)
            out[i] = model.positions[i] + offset[i % 3];
        geometry.positions.values.commit(model.positions.size());
        appendAll(geometry.positions.indices, model.positionIndices, positionShift);
        appendAll(geometry.normals.indices, model.normalIndices, geometry.normals.valueCount());
        appendAll(geometry.normals.values, model.normals);
        appendAll(geometry.texCoords.indices, model.texCoordIndices,
                  geometry.texCoords.valueCount());
        appendAll(geometry.texCoords.values, model.texCoords);
        for (const quint32 count : model.cornerCounts)
            geometry.cornerCounts.append(count);
    }
    geometry.cornerCount = static_cast<quint32>(geometry.positions.indices.size());
    geometry.groups.push_back({QStringLiteral("<default>"), {{0, geometry.faceCount(), 0, 0}}});
    return geometry;
}

Model readModel(const QString &fileName)
{
    Model model;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return model;
    QTextStream stream(&file);
    const auto append = [](std::vector<float> &to, const float *from, int count) {
        to.insert(to.end(), from, from + count);
    };
    for (OBJReader reader(stream); reader.valid(); reader.next()) {
        if (!reader.parseLine())
            continue;
        switch (reader.getLineType()) {
        case OBJReader::LINE_V:
            append(model.positions, reader.getV(), 3);
            break;
        case OBJReader::LINE_VN:
            append(model.normals, reader.getVn(), 3);
            break;
        case OBJReader::LINE_VT:
            append(model.texCoords, reader.getVt(), 2);
            break;
        case OBJReader::LINE_F:
            model.cornerCounts.push_back(static_cast<quint32>(reader.getNumVertices()));
            for (int i = 0; i < reader.getNumVertices(); ++i) {
                const OBJReader::Vertex &corner = reader.getVertex(i);
                model.positionIndices.push_back(static_cast<quint32>(corner.v));
                if (!model.normals.empty())
                    model.normalIndices.push_back(static_cast<quint32>(corner.vn));
                if (!model.texCoords.empty())
                    model.texCoordIndices.push_back(static_cast<quint32>(corner.vt));
            }
            break;
        default:
            break;
        }
    }
    return model;
}

/// A wavy sheet of `size` x `size` cells, each one quad or two triangles.
Model sheet(quint32 size, bool quads)
{
    Model model;
    for (quint32 y = 0; y <= size; ++y) {
        for (quint32 x = 0; x <= size; ++x) {
            const auto fx = static_cast<float>(x);
            const auto fy = static_cast<float>(y);
            model.positions.insert(model.positions.end(),
                                   {fx, fy, std::sin(0.1f * fx) * std::cos(0.07f * fy)});
            if (quads)
                model.texCoords.insert(model.texCoords.end(), {0.01f * fx, 0.01f * fy});
        }
    }
    const auto at = [size](quint32 x, quint32 y) { return y * (size + 1) + x; };
    for (quint32 y = 0; y < size; ++y) {
        for (quint32 x = 0; x < size; ++x) {
            const quint32 cell[4] = {at(x, y), at(x + 1, y), at(x + 1, y + 1), at(x, y + 1)};
            const std::vector<quint32> corners =
                quads ? std::vector<quint32>{cell[0], cell[1], cell[2], cell[3]}
                      : std::vector<quint32>{cell[0], cell[1], cell[2], cell[0], cell[2], cell[3]};
            model.positionIndices.insert(model.positionIndices.end(), corners.begin(),
                                         corners.end());
            if (quads)
                model.texCoordIndices.insert(model.texCoordIndices.end(), corners.begin(),
                                             corners.end());
            model.cornerCounts.insert(model.cornerCounts.end(), quads ? 1 : 2, quads ? 4 : 3);
        }
    }
    return model;
}

/// The same triangles with position lines of their own, as converted STL files
/// have.
Model loosened(const Model &model)
{
    Model loose;
    loose.cornerCounts = model.cornerCounts;
    for (const quint32 index : model.positionIndices) {
        loose.positionIndices.push_back(static_cast<quint32>(loose.positionIndices.size()));
        const auto *value = model.positions.data() + 3 * static_cast<size_t>(index);
        loose.positions.insert(loose.positions.end(), value, value + 3);
    }
    return loose;
}

double cpuSeconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Best CPU milliseconds of the parts of one preparation.
struct BestTimes
{
    double weld = 1e9;
    double triangulate = 1e9;
    double normals = 1e9;
    double all = 1e9;
};

/// Runs `step` and returns its CPU seconds.
template <typename Step>
double timed(double &best, const Step &step)
{
    const double begin = cpuSeconds();
    step();
    const double seconds = cpuSeconds() - begin;
    best = std::min(best, 1e3 * seconds);
    return seconds;
}

/// The steps one by one, since the stages of a load report are wall time.
void prepareInSteps(const Model &model, BestTimes &best)
{
    OBJGeometry geometry = repeated(model);
    WeldedCorners welded;
    timed(best.weld, [&] { welded = weldCorners(geometry); });

    const FaceSums sums(geometry.cornerCounts);
    GrowArray<quint32> indices;
    timed(best.triangulate, [&] {
        indices.reserveMore(3 * sums.triangles);
        FaceTriangles triangles(geometry.cornerCounts, welded.vertexOfCorner.data(),
                                welded.positions.data(), indices.data(), nullptr);
        triangles.addRun(geometry.groups.front().runs.front());
        indices.resize(triangles.size());
    });
    timed(best.normals, [&] {
        GrowArray<float> normals;
        normals.resize(3 * size_t(welded.vertexCount));
        TriMeshVertexNormals(static_cast<int>(welded.vertexCount), static_cast<int>(indices.size()),
                             welded.positions.data(), indices.data(), normals.data());
        benchmark::DoNotOptimize(normals.data());
    });
}

void prepare(benchmark::State &state, const Model &model)
{
    BestTimes best;
    PreparationReport report;
    const ScopedReport scope(report);
    PreparedGeometry prepared;
    size_t expectedTriangles = 0;
    for (auto _ : state) {
        prepareInSteps(model, best);
        prepared = {};
        OBJGeometry geometry = repeated(model);
        expectedTriangles = geometry.cornerCount - 2 * size_t(geometry.faceCount());
        state.SetIterationTime(timed(best.all, [&] {
            prepared = prepareGeometry(std::move(geometry), {QStringLiteral("<default>")}, nullptr);
        }));
    }
    if (prepared.indices->size() != 3 * expectedTriangles)
        state.SkipWithError("wrong number of triangles");
    state.counters["weld"] = best.weld;
    state.counters["triangulate"] = best.triangulate;
    state.counters["normals"] = best.normals;
    state.counters["all"] = best.all;
    state.counters["vertices"] = static_cast<double>(report.vertices);
    state.counters["triangles"] = static_cast<double>(expectedTriangles);
}

void add(const std::string &name, const Model &model)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [model](benchmark::State &state) { prepare(state, model); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char *argv[])
{
    // The message on welding is not for a table of numbers.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    benchmark::Initialize(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const QString fileName = QFile::decodeName(argv[i]);
        const Model model = readModel(fileName);
        if (model.positions.empty() || model.cornerCounts.empty()) {
            std::fprintf(stderr, "%s: no model\n", argv[i]);
            return 2;
        }
        add(QFileInfo(fileName).completeBaseName().toStdString(), model);
    }
    if (argc <= 1) {
        add("triangles", sheet(300, false));
        add("quads", sheet(300, true));
        add("loose", loosened(sheet(300, false)));
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
