// Loads a model with fast_obj, welds it with meshoptimizer, and prints what it took, as
// JSON.
//
//     load_fast_obj FILE.obj [positions]
//
// The outcome is what load_orv prepares: separate arrays of positions, normals and texture
// coordinates, welded by their bytes; triangles as indices, those of one material together. Faces of
// more corners become fans.
//
// With "positions", of a file that has nothing else: corners then have one index already, and only the
// positions are welded. To weld index tuples before bytes was tried for the other files: it takes more
// time than to weld all corners by their bytes.
#include "WeldedArrays.h"

#define FAST_OBJ_IMPLEMENTATION
#include <fast_obj.h>

#include <cstring>

namespace {

struct Destroy
{
    void operator()(fastObjMesh *mesh) const { fast_obj_destroy(mesh); }
};

using Mesh = std::unique_ptr<fastObjMesh, Destroy>;

/// Values of each corner, and those of the last once or twice more: meshoptimizer wants three corners
/// for each triangle, and counts. fast_obj counts from 1; 0, and what is out of range, selects the first
/// value, which is its own.
template <size_t Components>
Floats cornerValues(const fastObjMesh &mesh, fastObjUInt fastObjIndex::*index, const float *values,
                    unsigned count)
{
    Floats result(Components * ((size_t(mesh.index_count) + 2) / 3 * 3));
    float *to = result.data();
    for (unsigned corner = 0; corner < mesh.index_count; ++corner, to += Components) {
        const fastObjUInt wanted = mesh.indices[corner].*index;
        const size_t from = wanted < count ? wanted : 0;
        std::memcpy(to, values + Components * from, Components * sizeof(float));
    }
    for (const float *end = result.data() + result.size(); to < end; to += Components)
        std::memcpy(to, to - Components, Components * sizeof(float));
    return result;
}

/// Those of one material behind each other, as fans.
Numbers trianglesByMaterial(const fastObjMesh &mesh, const Numbers &vertexOfCorner)
{
    // There may be no material at all, and faces before the first are then of number 0.
    std::vector<size_t> next(size_t(mesh.material_count) + 2, 0);
    for (unsigned face = 0; face < mesh.face_count; ++face) {
        if (mesh.face_vertices[face] > 2)
            next[size_t(mesh.face_materials[face]) + 1] += 3 * size_t(mesh.face_vertices[face] - 2);
    }
    for (size_t material = 1; material < next.size(); ++material)
        next[material] += next[material - 1];
    Numbers indices(next.back());
    const unsigned *corner = vertexOfCorner.data();
    for (unsigned face = 0; face < mesh.face_count; ++face) {
        const unsigned corners = mesh.face_vertices[face];
        size_t &at = next[mesh.face_materials[face]];
        for (unsigned i = 2; i < corners; ++i, at += 3) {
            indices[at] = corner[0];
            indices[at + 1] = corner[i - 1];
            indices[at + 2] = corner[i];
        }
        corner += corners;
    }
    return indices;
}

/// Welds the positions as the file lists them.
/// \return the vertex of each corner.
Numbers weldPositions(const fastObjMesh &mesh, Arrays &arrays)
{
    const size_t count = mesh.position_count;
    Numbers corners;
    corners.reserve(size_t(mesh.index_count) + 2);
    for (unsigned i = 0; i < mesh.index_count; ++i)
        corners.push_back(mesh.indices[i].p < count ? mesh.indices[i].p : 0);
    while (corners.size() % 3 != 0) // as in cornerValues()
        corners.push_back(corners.back());
    Numbers vertexOfPosition(count);
    const meshopt_Stream stream{mesh.positions, 3 * sizeof(float), 3 * sizeof(float)};
    const size_t vertices = meshopt_generateVertexRemapMulti(
        vertexOfPosition.data(), corners.data(), corners.size(), count, &stream, 1);
    arrays.positions.resize(3 * vertices);
    meshopt_remapVertexBuffer(arrays.positions.data(), mesh.positions, count, 3 * sizeof(float),
                              vertexOfPosition.data());
    for (unsigned &corner : corners)
        corner = vertexOfPosition[corner];
    return corners;
}

Mesh read(const char *fileName)
{
    Mesh mesh(fast_obj_read(fileName));
    if (!mesh)
        std::fprintf(stderr, "fast_obj cannot read '%s'\n", fileName);
    return mesh;
}

bool loadPositions(const char *fileName, Arrays &arrays)
{
    const Mesh mesh = read(fileName);
    if (!mesh || mesh->normal_count > 1 || mesh->texcoord_count > 1)
        return false;
    arrays.indices = trianglesByMaterial(*mesh, weldPositions(*mesh, arrays));
    return true;
}

bool load(const char *fileName, Arrays &arrays)
{
    const Mesh mesh = read(fileName);
    if (!mesh)
        return false;
    // What a corner without a normal gets: fast_obj's own is 0 0 1, all others' is zeros.
    std::memset(mesh->normals, 0, 3 * sizeof(float));
    arrays.positions =
        cornerValues<3>(*mesh, &fastObjIndex::p, mesh->positions, mesh->position_count);
    if (mesh->normal_count > 1)
        arrays.normals =
            cornerValues<3>(*mesh, &fastObjIndex::n, mesh->normals, mesh->normal_count);
    if (mesh->texcoord_count > 1)
        arrays.texCoords =
            cornerValues<2>(*mesh, &fastObjIndex::t, mesh->texcoords, mesh->texcoord_count);
    // Whole faces are welded, and cut afterwards: a quad has four corners, its triangles six.
    arrays.indices = trianglesByMaterial(*mesh, weld(arrays));
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    const bool onlyPositions = argc > 2 && std::strcmp(argv[2], "positions") == 0;
    return measureArrays(argc, argv, onlyPositions ? loadPositions : load);
}
