// Any OBJ file and its material library, as the loader reads them, up to the streams
// that would go to the GPU.
#include "support/Fuzzing.h"
#include "support/PreparedOBJ.h"

using namespace OrvFuzz;

namespace {

constexpr int VectorBytes = 3 * sizeof(float);
constexpr int PairBytes = 2 * sizeof(float);

int byteCount(const PreparedOBJ &model, const char *attribute)
{
    const auto found = model.attributes.find(QLatin1String(attribute));
    return found == model.attributes.end() ? -1 : found->second.size();
}

/// What the GPU relies on: as many values of each attribute, indices that select
/// some, and commands that follow one another through all indices.
void checkModel(const PreparedOBJ &model)
{
    const int positionBytes = byteCount(model, "va_Vertex");
    if (positionBytes < 0) {
        require(model.attributes.empty() && model.commands.empty() && model.indices.isEmpty(),
                "a model without positions has something else");
        return;
    }
    require(positionBytes % VectorBytes == 0, "positions end in the middle of one");
    const auto vertexCount = static_cast<unsigned>(positionBytes / VectorBytes);
    require(byteCount(model, "va_Normal") == positionBytes, "not one normal for each position");
    const int texCoordBytes = byteCount(model, "va_TexCoord");
    require(texCoordBytes < 0 || texCoordBytes == static_cast<int>(vertexCount) * PairBytes,
            "not one texture coordinate for each position");

    Input indices(reinterpret_cast<const std::uint8_t *>(model.indices.constData()),
                  static_cast<std::size_t>(model.indices.size()));
    while (!indices.isAtEnd())
        require(indices.take<unsigned>() < vertexCount, "an index selects no vertex");
    unsigned next = 0;
    for (const PreparedOBJ::Command &command : model.commands) {
        require(command.firstIndex == next && command.count % 3 == 0,
                "commands do not follow one another in whole triangles");
        next += command.count;
    }
    require(next * sizeof(unsigned) == static_cast<unsigned>(model.indices.size()),
            "the commands do not take all indices");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const ModelText text(asText(data, size));
    if (namesLibraryByPath(text.obj))
        return 0;
    LibraryDirectory &libraries = LibraryDirectory::instance();
    libraries.write(text.mtl);
    PreparedOBJ model = prepareByBytes(text.obj, libraries.path(), largeChunks());
    if (model.needsLineReader)
        model = prepareByLines(text.obj, libraries.path(), largeChunks());
    require(!model.isTooLarge, "a small text passes a limit");
    checkModel(model);
    return 0;
}
