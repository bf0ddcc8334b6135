// Loads a model with tinyobjloader, welds it with meshoptimizer, and prints what it
// took, as JSON.
//
//     load_tinyobj FILE.obj
//
// The outcome is what load_orv prepares: separate arrays of positions, normals and
// texture coordinates, welded by their bytes; triangles as indices, those of one
// material together.
#include "WeldedArrays.h"

#include <tiny_obj_loader.h>

#include <cstring>
#include <vector>

namespace {

/// Writes the values of an index behind the others; zeros where there is none.
float *put(float *to, const std::vector<float> &values, int index, size_t components)
{
    static const float Zeros[3] = {};
    const float *from = index < 0 ? Zeros : values.data() + components * static_cast<size_t>(index);
    std::memcpy(to, from, components * sizeof(float));
    return to + components;
}

/// One entry per corner, the triangles of one material behind each other.
Arrays cornersByMaterial(const tinyobj::ObjReader &reader)
{
    const tinyobj::attrib_t &attributes = reader.GetAttrib();
    size_t corners = 0;
    for (const tinyobj::shape_t &shape : reader.GetShapes())
        corners += shape.mesh.indices.size();
    Arrays arrays;
    arrays.positions.resize(3 * corners);
    arrays.normals.resize(attributes.normals.empty() ? 0 : 3 * corners);
    arrays.texCoords.resize(attributes.texcoords.empty() ? 0 : 2 * corners);
    const int materials = static_cast<int>(reader.GetMaterials().size());
    std::vector<std::vector<const tinyobj::index_t *>> triangles(static_cast<size_t>(materials) +
                                                                 1);
    for (const tinyobj::shape_t &shape : reader.GetShapes()) {
        for (size_t face = 0; face < shape.mesh.num_face_vertices.size(); ++face) {
            const int material = shape.mesh.material_ids[face];
            triangles[static_cast<size_t>(material + 1)].push_back(&shape.mesh.indices[3 * face]);
        }
    }
    float *position = arrays.positions.data();
    float *normal = arrays.normals.data();
    float *texCoord = arrays.texCoords.data();
    for (const auto &group : triangles) {
        for (const tinyobj::index_t *corner : group) {
            for (int i = 0; i < 3; ++i) {
                position = put(position, attributes.vertices, corner[i].vertex_index, 3);
                if (!attributes.normals.empty())
                    normal = put(normal, attributes.normals, corner[i].normal_index, 3);
                if (!attributes.texcoords.empty())
                    texCoord = put(texCoord, attributes.texcoords, corner[i].texcoord_index, 2);
            }
        }
    }
    return arrays;
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
    arrays.indices = weld(arrays); // corners are those of triangles: three in a row are one
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    return measureArrays(argc, argv, load);
}
