// Loads a model by the rules that define the library's result, each done as it reads, and
// prints what it took, as JSON.
//
//     load_rules FILE.obj
//
// A line is a QString split by a QRegExp; each corner gets a copy of its values; vertices
// are welded by a QHash of their bytes; a face is triangulated in the plane of its own
// normal, whatever it looks like. Reading, triangles and normals are those of the tests'
// reference implementation, which shares no code with the library. What comes out has to be the
// library's result, vertex by vertex and triangle by triangle, without the driver.
#include "Measurement.h"

#include "reference/FaceTriangles.h"
#include "reference/FileReading.h"

#include "support/PlainGeometry.h"

#include <QtCore/QHash>
#include <QtCore/QVector>

using namespace OrvReference;
using namespace OrvTest;

namespace {

/// One value per corner, or per vertex when welded.
struct Column
{
    int components;
    std::vector<float> values;

    const char *row(size_t i) const
    {
        return reinterpret_cast<const char *>(values.data() + i * size_t(components));
    }
    int rowBytes() const { return components * static_cast<int>(sizeof(float)); }
};

struct Model
{
    std::map<QString, Column> columns;
    std::vector<quint32> indices;
};

/// A vertex for each corner.
Column expanded(const PlainAttribute &attribute, size_t corners)
{
    Column column{attribute.components, {}};
    const auto components = static_cast<size_t>(attribute.components);
    column.values.resize(corners * components);
    for (size_t corner = 0; corner < attribute.indices.size() && corner < corners; ++corner) {
        const size_t index = attribute.indices[corner];
        for (size_t i = 0; index < attribute.values.size() / components && i < components; ++i)
            column.values[corner * components + i] = attribute.values[index * components + i];
    }
    return column;
}

/// Numbers the corners with equal bytes alike and keeps one vertex for each number.
Model welded(const std::map<QString, Column> &corners, size_t count)
{
    Model model;
    QHash<QByteArray, int> numbers;
    QVector<int> firstCorners;
    for (size_t corner = 0; corner < count; ++corner) {
        QByteArray key;
        for (const auto &[name, column] : corners)
            key.append(column.row(corner), column.rowBytes());
        const auto known = numbers.constFind(key);
        if (known != numbers.constEnd()) {
            model.indices.push_back(static_cast<quint32>(known.value()));
            continue;
        }
        model.indices.push_back(static_cast<quint32>(numbers.size()));
        numbers.insert(key, numbers.size());
        firstCorners.append(static_cast<int>(corner));
    }
    for (const auto &[name, column] : corners) {
        Column &kept = model.columns[name];
        kept.components = column.components;
        for (const int corner : qAsConst(firstCorners)) {
            const auto first = column.values.begin() + ptrdiff_t(corner) * column.components;
            kept.values.insert(kept.values.end(), first, first + column.components);
        }
    }
    return model;
}

/// The triangles of all groups, in place of the corners.
void triangulate(const PlainModel &read, Model &model)
{
    std::vector<size_t> firstCorners;
    size_t next = 0;
    for (const quint32 count : read.cornerCounts) {
        firstCorners.push_back(next);
        next += count;
    }
    const std::vector<float> &positions = model.columns[QStringLiteral("va_Vertex")].values;
    std::vector<quint32> triangles;
    for (const PlainGroup &group : read.groups) {
        for (const quint32 face : group.faces) {
            const auto first = model.indices.begin() + ptrdiff_t(firstCorners[face]);
            const std::vector<quint32> corners(first, first + read.cornerCounts[face]);
            const std::vector<quint32> cut = triangulateFace(corners, positions);
            triangles.insert(triangles.end(), cut.begin(), cut.end());
        }
    }
    model.indices.swap(triangles);
}

bool load(const char *fileName, Model &model)
{
    PlainModel read;
    QString error;
    if (!readOBJFile(QString::fromLocal8Bit(fileName), read, error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return false;
    }
    const size_t corners = read.cornerCount();
    std::map<QString, Column> columns;
    for (const auto &[name, attribute] : read.attributes)
        columns[name] = expanded(attribute, corners);
    model = welded(columns, corners);
    triangulate(read, model);
    Column &normals = model.columns[QStringLiteral("va_Normal")];
    if (normals.values.empty()) {
        normals = {3, plainVertexNormals(model.columns[QStringLiteral("va_Vertex")].values,
                                         model.indices)};
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 2)
        return 2;
    Model model;
    return measureLoad([&](Measurement &measured) {
        if (!load(argv[1], model))
            return false;
        measured.vertices = model.columns[QStringLiteral("va_Vertex")].values.size() / 3;
        measured.triangles = model.indices.size() / 3;
        return true;
    });
}
