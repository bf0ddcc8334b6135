// Loads a model with tinyobjloader, welds it with meshoptimizer, and prints what it
// took, as JSON.
//
//     load_tinyobj FILE.obj
//
// The outcome is what load_orv uploads: separate arrays of positions, normals and
// texture coordinates, welded by their bytes; triangles as indices, those of one
// material together.
#include "Measurement.h"

#include <meshoptimizer.h>
#include <tiny_obj_loader.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

/// The arrays of a model; the first three per corner before welding and per
/// vertex after it.
struct Arrays
{
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<float> texCoords;
    std::vector<unsigned> indices;
};

void append(std::vector<float> &to, const std::vector<float> &values, int index, size_t components)
{
    static const float Zeros[3] = {};
    const float *from = index < 0 ? Zeros : values.data() + components * static_cast<size_t>(index);
    to.insert(to.end(), from, from + components);
}

/// One entry per corner, the triangles of one material behind each other.
Arrays cornersByMaterial(const tinyobj::ObjReader &reader)
{
    const tinyobj::attrib_t &attributes = reader.GetAttrib();
    size_t corners = 0;
    for (const tinyobj::shape_t &shape : reader.GetShapes())
        corners += shape.mesh.indices.size();
    Arrays arrays;
    arrays.positions.reserve(3 * corners);
    arrays.normals.reserve(attributes.normals.empty() ? 0 : 3 * corners);
    arrays.texCoords.reserve(attributes.texcoords.empty() ? 0 : 2 * corners);
    const int materials = static_cast<int>(reader.GetMaterials().size());
    std::vector<std::vector<const tinyobj::index_t *>> triangles(static_cast<size_t>(materials) +
                                                                 1);
    for (const tinyobj::shape_t &shape : reader.GetShapes()) {
        for (size_t face = 0; face < shape.mesh.num_face_vertices.size(); ++face) {
            const int material = shape.mesh.material_ids[face];
            triangles[static_cast<size_t>(material + 1)].push_back(&shape.mesh.indices[3 * face]);
        }
    }
    for (const auto &group : triangles) {
        for (const tinyobj::index_t *corner : group) {
            for (int i = 0; i < 3; ++i) {
                append(arrays.positions, attributes.vertices, corner[i].vertex_index, 3);
                if (!attributes.normals.empty())
                    append(arrays.normals, attributes.normals, corner[i].normal_index, 3);
                if (!attributes.texcoords.empty())
                    append(arrays.texCoords, attributes.texcoords, corner[i].texcoord_index, 2);
            }
        }
    }
    return arrays;
}

void remap(std::vector<float> &values, size_t components, size_t corners, size_t vertices,
           const std::vector<unsigned> &table)
{
    if (values.empty())
        return;
    std::vector<float> welded(vertices * components);
    meshopt_remapVertexBuffer(welded.data(), values.data(), corners, components * sizeof(float),
                              table.data());
    values.swap(welded);
}

void weld(Arrays &arrays)
{
    const size_t corners = arrays.positions.size() / 3;
    std::vector<meshopt_Stream> streams{
        {arrays.positions.data(), 3 * sizeof(float), 3 * sizeof(float)}};
    if (!arrays.normals.empty())
        streams.push_back({arrays.normals.data(), 3 * sizeof(float), 3 * sizeof(float)});
    if (!arrays.texCoords.empty())
        streams.push_back({arrays.texCoords.data(), 2 * sizeof(float), 2 * sizeof(float)});
    std::vector<unsigned> table(corners);
    const size_t vertices = meshopt_generateVertexRemapMulti(
        table.data(), nullptr, corners, corners, streams.data(), streams.size());
    remap(arrays.positions, 3, corners, vertices, table);
    remap(arrays.normals, 3, corners, vertices, table);
    remap(arrays.texCoords, 2, corners, vertices, table);
    arrays.indices.swap(table); // without an index buffer the table is the new one
}

void addNormals(Arrays &arrays)
{
    arrays.normals.assign(arrays.positions.size(), 0.0f);
    const float *p = arrays.positions.data();
    for (size_t i = 0; i + 2 < arrays.indices.size(); i += 3) {
        const size_t a = 3 * size_t(arrays.indices[i]);
        const size_t b = 3 * size_t(arrays.indices[i + 1]);
        const size_t c = 3 * size_t(arrays.indices[i + 2]);
        const float u[3] = {p[b] - p[a], p[b + 1] - p[a + 1], p[b + 2] - p[a + 2]};
        const float v[3] = {p[c] - p[a], p[c + 1] - p[a + 1], p[c + 2] - p[a + 2]};
        const float n[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                            u[0] * v[1] - u[1] * v[0]};
        for (const size_t vertex : {a, b, c}) {
            for (size_t axis = 0; axis < 3; ++axis)
                arrays.normals[vertex + axis] += n[axis];
        }
    }
    for (size_t i = 0; i + 2 < arrays.normals.size(); i += 3) {
        float *n = arrays.normals.data() + i;
        const float length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
        for (size_t axis = 0; length > 0.0f && axis < 3; ++axis)
            n[axis] /= length;
    }
}

bool load(const char *fileName, Arrays &arrays)
{
    tinyobj::ObjReaderConfig config;
    config.triangulate = true;
    config.vertex_color = false;
    tinyobj::ObjReader reader;
    if (!reader.ParseFromFile(fileName, config)) {
        std::fprintf(stderr, "%s\n", reader.Error().c_str());
        return false;
    }
    arrays = cornersByMaterial(reader);
    weld(arrays);
    if (arrays.normals.empty())
        addNormals(arrays);
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 2)
        return 2;
    Arrays arrays;
    return measureLoad([&](Measurement &measured) {
        if (!load(argv[1], arrays))
            return false;
        measured.vertices = arrays.positions.size() / 3;
        measured.triangles = arrays.indices.size() / 3;
        return true;
    });
}
