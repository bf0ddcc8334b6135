// A builder driven by a string of bytes, on streams of the library and of a caller.
#include "support/BuilderScript.h"
#include "support/CallerStreams.h"
#include "support/Fuzzing.h"

using namespace Halvard::Orv;
using namespace OrvFuzz;

namespace {

constexpr quint64 FlagsMask = 1;

enum class Storage
{
    LibraryHuge, ///< the library's streams, and counts that they cannot hold
    Both,        ///< the library's and a caller's, which must end with the same contents
    Ending,      ///< a caller's allocator that gives null after some streams
    Bounded      ///< a caller's streams that do not grow beyond some elements
};

QByteArray contentsAfter(const Input &input, const Generosity &generosity)
{
    const QSharedPointer<ModelDataStreamAllocator> allocator(new CallerAllocator(generosity));
    ModelBuilder builder(allocator, FlagsMask);
    BuilderScript(input, builder, false).run();
    return contentsOf(builder);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    const auto storage = static_cast<Storage>(input.below(4));
    Generosity generosity;
    switch (storage) {
    case Storage::LibraryHuge:
    case Storage::Both: {
        ModelBuilder builder({}, FlagsMask);
        BuilderScript(input, builder, storage == Storage::LibraryHuge).run();
        if (storage == Storage::Both)
            require(contentsOf(builder) == contentsAfter(input, generosity),
                    "a caller's streams end with other contents than the library's");
        break;
    }
    case Storage::Ending:
        generosity.streams = input.below(40);
        contentsAfter(input, generosity);
        break;
    case Storage::Bounded:
        generosity.elements = input.byte();
        contentsAfter(input, generosity);
        break;
    }
    return 0;
}
