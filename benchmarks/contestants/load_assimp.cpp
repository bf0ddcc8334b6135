// Loads a model with Assimp and prints what it took, as JSON.
//
//     load_assimp FILE.obj
//
// Assimp makes one mesh per material, so that vertices which two materials share
// count twice. Its arrays of vertices are what one uploads; the indices of its
// faces are put behind each other.
#include "Measurement.h"

#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <vector>

namespace {

/// The indices of all meshes; their vertices are counted in `measured`.
std::vector<unsigned> joinedIndices(const aiScene &scene, Measurement &measured)
{
    std::vector<unsigned> indices;
    for (unsigned m = 0; m < scene.mNumMeshes; ++m) {
        const aiMesh &mesh = *scene.mMeshes[m];
        if (!(mesh.mPrimitiveTypes &
              aiPrimitiveType_TRIANGLE)) // beside it, what polygons they were
            continue;
        const auto first = static_cast<unsigned>(measured.vertices);
        indices.reserve(indices.size() + 3 * size_t(mesh.mNumFaces));
        for (unsigned face = 0; face < mesh.mNumFaces; ++face) {
            for (unsigned corner = 0; corner < 3; ++corner)
                indices.push_back(first + mesh.mFaces[face].mIndices[corner]);
        }
        measured.vertices += mesh.mNumVertices;
    }
    return indices;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 2)
        return 2;
    // Out here, so that freeing them is not measured.
    Assimp::Importer importer;
    std::vector<unsigned> indices;
    return measureLoad([&](Measurement &measured) {
        const aiScene *scene =
            importer.ReadFile(argv[1], aiProcess_Triangulate | aiProcess_JoinIdenticalVertices |
                                           aiProcess_GenSmoothNormals | aiProcess_SortByPType);
        if (!scene) {
            std::fprintf(stderr, "%s\n", importer.GetErrorString());
            return false;
        }
        indices = joinedIndices(*scene, measured);
        measured.triangles = indices.size() / 3;
        return true;
    });
}
