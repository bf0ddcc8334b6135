// Reading OBJ files as bytes: CPU time per file of some 230 MB, from the page cache.
//
//     bench_scan [--benchmark_...] [MODEL.obj...]
//
// Every model given is written as often as it takes, its faces counting on, into a
// temporary file. Without any, there are sheets: of triangles, of quads with texture
// coordinates, of triangles with texture coordinates and normals, and of triangles in less
// common notations.
//
// The counters are megabytes per CPU second, of the best run and of the median one.
#include "Libraries/MaterialLibraries.h"
#include "Scanning/OBJScanning.h"

#include <OrvCore/InstanceData.h>
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/OBJReader.h>

#include <benchmark/benchmark.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

using namespace Halvard::Orv;

namespace {

constexpr qint64 FileBytes = 230 * 1000 * 1000;

/// A model that can be written repeatedly.
struct Model
{
    QByteArray values;            ///< the lines of its values
    bool countsBackwards = false; ///< faces name the latest value -1
    std::vector<std::vector<OBJReader::Vertex>> faces;
    int positions = 0;
    int texCoords = 0;
    int normals = 0;
    /// What the line reader makes of `values`.
    std::vector<float> positionFloats;
    std::vector<float> texCoordFloats;
    std::vector<float> normalFloats;
};

void readValues(Model &model)
{
    QTextStream stream(&model.values, QIODevice::ReadOnly);
    for (OBJReader reader(stream); reader.valid(); reader.next()) {
        reader.parseLine();
        const float *const value = reader.getV();
        const int type = reader.getLineType();
        if (type == OBJReader::LINE_V)
            model.positionFloats.insert(model.positionFloats.end(), value, value + 3);
        else if (type == OBJReader::LINE_VT)
            model.texCoordFloats.insert(model.texCoordFloats.end(), value, value + 2);
        else if (type == OBJReader::LINE_VN)
            model.normalFloats.insert(model.normalFloats.end(), value, value + 3);
    }
    model.positions = static_cast<int>(model.positionFloats.size() / 3);
    model.texCoords = static_cast<int>(model.texCoordFloats.size() / 2);
    model.normals = static_cast<int>(model.normalFloats.size() / 3);
}

Model readModel(const QString &fileName)
{
    Model model;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return model;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith('v'))
            model.values += line.trimmed() + '\n';
    }
    file.seek(0);
    QTextStream stream(&file);
    for (OBJReader reader(stream); reader.valid(); reader.next()) {
        if (reader.getLineType() != OBJReader::LINE_F || !reader.parseLine())
            continue;
        std::vector<OBJReader::Vertex> face;
        for (int i = 0; i < reader.getNumVertices(); ++i)
            face.push_back(reader.getVertex(i));
        model.faces.push_back(face);
    }
    readValues(model);
    return model;
}

/// A square of hills, `side` cells wide.
/// \param positionFormat of a position's line.
Model sheet(int side, int cornersPerFace, bool withTexCoords, bool withNormals,
            const char *positionFormat = "v %.6f %.6f %.6f\n")
{
    Model model;
    char line[100];
    for (int i = 0; i <= side; ++i) {
        for (int j = 0; j <= side; ++j) {
            const double height = 0.001 * ((i * 37 + j * 101) % 1000 - 500);
            std::snprintf(line, sizeof line, positionFormat, 0.01 * i, height, -0.02 * j);
            model.values += line;
            std::snprintf(line, sizeof line, "vt %.6f %.6f\n", 1.0 * i / side, 1.0 * j / side);
            model.values += withTexCoords ? line : "";
            std::snprintf(line, sizeof line, "vn %.4f %.4f %.4f\n", height, 0.9, -height / 2);
            model.values += withNormals ? line : "";
        }
    }
    readValues(model);
    const auto corner = [&](int i, int j) {
        const int index = i * (side + 1) + j;
        return OBJReader::Vertex{index, withNormals ? index : int(OBJReader::AbsentIndex),
                                 withTexCoords ? index : int(OBJReader::AbsentIndex)};
    };
    for (int i = 0; i < side; ++i) {
        for (int j = 0; j < side; ++j) {
            if (cornersPerFace == 4) {
                model.faces.push_back(
                    {corner(i, j), corner(i + 1, j), corner(i + 1, j + 1), corner(i, j + 1)});
            } else {
                model.faces.push_back({corner(i, j), corner(i + 1, j), corner(i + 1, j + 1)});
                model.faces.push_back({corner(i, j), corner(i + 1, j + 1), corner(i, j + 1)});
            }
        }
    }
    return model;
}

int shifted(int index, int shift)
{
    return index == OBJReader::AbsentIndex ? index : index + shift;
}

/// The faces of a copy of the model.
QByteArray faceLines(const Model &model, int copy)
{
    const auto number = [&](int index, int count) {
        if (index == OBJReader::AbsentIndex)
            return QByteArray();
        return QByteArray::number(model.countsBackwards ? index - count : index + copy * count + 1);
    };
    QByteArray text;
    for (const auto &face : model.faces) {
        text += 'f';
        for (const OBJReader::Vertex &corner : face) {
            text += ' ' + number(corner.v, model.positions);
            const QByteArray texCoord = number(corner.vt, model.texCoords);
            const QByteArray normal = number(corner.vn, model.normals);
            if (!texCoord.isEmpty() || !normal.isEmpty())
                text += '/' + texCoord;
            if (!normal.isEmpty())
                text += '/' + normal;
        }
        text += '\n';
    }
    return text;
}

/// Writes the model repeatedly.
/// \return how often; 0 when the file cannot be written.
int writeCopies(const Model &model, QFile &file)
{
    int copies = 0;
    for (; file.size() < FileBytes; ++copies) {
        const QByteArray text = model.values + faceLines(model, copies);
        if (file.write(text) != text.size() || !file.flush())
            return 0;
    }
    return copies;
}

/// Whether `values` are `copies` times the floats of one copy.
bool areCopies(const GrowArray<float> &values, const std::vector<float> &copy, int copies)
{
    if (values.size() != copy.size() * static_cast<size_t>(copies))
        return false;
    for (size_t i = 0; i < values.size(); i += copy.size()) {
        if (std::memcmp(values.data() + i, copy.data(), copy.size() * sizeof(float)) != 0)
            return false;
    }
    return true;
}

/// Whether every copy of the model is there, and the faces of the first and the
/// last are right.
bool isRight(const OBJGeometry &geometry, const Model &model, int copies)
{
    const auto count = static_cast<size_t>(copies);
    if (geometry.faceCount() != count * model.faces.size() ||
        !areCopies(geometry.positions.values, model.positionFloats, copies) ||
        !areCopies(geometry.texCoords.values, model.texCoordFloats, copies) ||
        !areCopies(geometry.normals.values, model.normalFloats, copies))
        return false;
    for (const int copy : {0, copies - 1}) {
        size_t at = geometry.cornerCount / count * static_cast<size_t>(copy);
        for (const auto &face : model.faces) {
            for (const OBJReader::Vertex &corner : face) {
                const auto is = [at](const OBJAttribute &attribute, int index) {
                    return !attribute.exists() ||
                           attribute.indices[at] == static_cast<quint32>(index);
                };
                if (!is(geometry.positions, shifted(corner.v, copy * model.positions)) ||
                    !is(geometry.texCoords, shifted(corner.vt, copy * model.texCoords)) ||
                    !is(geometry.normals, shifted(corner.vn, copy * model.normals)))
                    return false;
                ++at;
            }
        }
    }
    return true;
}

double cpuSeconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

void scan(benchmark::State &state, const Model &model)
{
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("model.obj")));
    if (!file.open(QIODevice::ReadWrite))
        return state.SkipWithError("cannot write a temporary file");
    const int copies = writeCopies(model, file);
    if (copies == 0)
        return state.SkipWithError("cannot write a temporary file");

    std::vector<double> times;
    bool right = true;
    for (auto _ : state) {
        ModelBuilder builder({}, 0);
        builder.createMaterialGroup(QStringLiteral("<default>"), InstanceData(), -1, 0);
        MaterialLibraries libraries(builder);
        OBJGeometry geometry;
        QString libraryPath;
        file.seek(0);
        const double begin = cpuSeconds();
        const auto outcome = scanOBJFile(file, directory.path(), libraries, geometry, libraryPath);
        times.push_back(cpuSeconds() - begin);
        state.SetIterationTime(times.back());
        right = right && outcome == OBJScanOutcome::Finished && isRight(geometry, model, copies);
    }
    if (!right)
        return state.SkipWithError("the file was not read rightly");
    std::sort(times.begin(), times.end());
    const double megabytes = 1e-6 * static_cast<double>(file.size());
    state.counters["best MB/s"] = megabytes / times.front();
    state.counters["median MB/s"] = megabytes / times[times.size() / 2];
}

void add(const std::string &name, const Model &model)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [model](benchmark::State &state) { scan(state, model); })
        ->UseManualTime()
        ->Iterations(9)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char *argv[])
{
    benchmark::Initialize(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const QString fileName = QFile::decodeName(argv[i]);
        const Model model = readModel(fileName);
        if (model.positions == 0 || model.faces.empty()) {
            std::fprintf(stderr, "%s: no model\n", argv[i]);
            return 2;
        }
        add(QFileInfo(fileName).completeBaseName().toStdString(), model);
    }
    if (argc <= 1) {
        add("triangles v", sheet(300, 3, false, false));
        add("quads v/vt", sheet(300, 4, true, false));
        add("triangles v/vt/vn", sheet(300, 3, true, true));
        Model backwards = sheet(300, 3, true, true);
        backwards.countsBackwards = true;
        add("triangles v/vt/vn, backwards", backwards);
        add("triangles v, exponents", sheet(300, 3, false, false, "v %.6e %.6e %.6e\n"));
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
