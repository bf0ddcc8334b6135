// Any OBJ file and its material library, as the loader reads them, up to the streams
// that would go to the GPU.
#include "support/Fuzzing.h"
#include "support/PreparedOBJ.h"

using namespace Halvard::Orv;
using namespace OrvFuzz;
using namespace OrvTest;

namespace {

/// How many values a vertex attribute has; -1 when there is none.
int valueCount(const Bundle &bundle, const char *name, int components)
{
    const auto found = bundle.attributes.find(QLatin1String(name));
    if (found == bundle.attributes.end())
        return -1;
    const auto floats = static_cast<int>(found->second.values.size());
    require(found->second.components == components, "an attribute of other components");
    require(floats % components == 0, "values end in the middle of one");
    return floats / components;
}

/// What the GPU relies on: as many values of each attribute, indices that select
/// some, and commands that follow one another through all indices.
void checkBundle(const Bundle &bundle)
{
    const int vertexCount = valueCount(bundle, "va_Vertex", 3);
    require(vertexCount >= 0, "something is drawn without positions");
    require(valueCount(bundle, "va_Normal", 3) == vertexCount, "not one normal for each position");
    const int texCoordCount = valueCount(bundle, "va_TexCoord", 2);
    require(texCoordCount < 0 || texCoordCount == vertexCount,
            "not one texture coordinate for each position");

    for (const quint32 index : bundle.indices)
        require(index < static_cast<quint32>(vertexCount), "an index selects no vertex");
    quint32 next = 0;
    for (const Command &command : bundle.commands) {
        require(command.firstIndex == next && command.count % 3 == 0,
                "commands do not follow one another in whole triangles");
        next += command.count;
    }
    require(next == bundle.indices.size(), "the commands do not take all indices");
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
    if (model.outcome == OBJScanOutcome::NeedsLineReader)
        model = prepareByLines(text.obj, libraries.path(), largeChunks());
    require(model.outcome != OBJScanOutcome::LimitExceeded, "a small text passes a limit");
    for (const Bundle &bundle : model.prepared.bundles)
        checkBundle(bundle);
    return 0;
}
