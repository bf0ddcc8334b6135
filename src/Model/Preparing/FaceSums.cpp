#include "Preparing/FaceSums.h"

#include <algorithm>
#include <cstring>

namespace Halvard::Orv {

namespace {

/// Sums over so few corner counts that they fit 16 bits in each lane.
struct ByteBlock
{
    static constexpr size_t MaxCount = 16 * 127;

    ByteBlock(const quint8 *bytes, size_t count)
    {
        using Bytes = quint8 __attribute__((vector_size(16)));
        using Shorts = quint16 __attribute__((vector_size(16)));
        const auto added = [](Bytes values) {
            const auto pairs = reinterpret_cast<Shorts>(values);
            return (pairs & 0xff) + (pairs >> 8);
        };
        Shorts sums = {};
        Shorts sumsAboveTwo = {};
        auto above = reinterpret_cast<Bytes>(sums);
        const auto take = [&](const Bytes &values) {
            sums += added(values);
            sumsAboveTwo += added((values - 2) & reinterpret_cast<Bytes>(values > 2));
            above |= reinterpret_cast<Bytes>(values > 3);
        };
        Bytes values = {};
        const quint8 *const end = bytes + count / sizeof values * sizeof values;
        for (; bytes != end; bytes += sizeof values) {
            std::memcpy(&values, bytes, sizeof values);
            take(values);
        }
        values = Bytes{};
        std::memcpy(&values, bytes, count % sizeof values);
        take(values);
        for (unsigned lane = 0; lane < 8; ++lane) {
            sum += sums[lane];
            sumAboveTwo += sumsAboveTwo[lane];
            hasAboveThree |= above[2 * lane] != 0 || above[2 * lane + 1] != 0;
        }
    }

    quint32 sum = 0;
    quint32 sumAboveTwo = 0; ///< of what each count is above 2
    bool hasAboveThree = false;
};

} // namespace

FaceSums::FaceSums(const CornerCounts &counts)
    : FaceSums(counts, 0, static_cast<quint32>(counts.small.size()), 0)
{}

FaceSums::FaceSums(const CornerCounts &counts, quint32 firstFace, quint32 faceCount,
                   quint32 firstLarge)
{
    const quint8 *const small = counts.small.data() + firstFace;
    for (size_t first = 0; first < faceCount; first += ByteBlock::MaxCount) {
        const size_t count = std::min(faceCount - first, ByteBlock::MaxCount);
        const ByteBlock block(small + first, count);
        corners += block.sum;
        triangles += block.sumAboveTwo;
        hasLargerThanTriangles |= block.hasAboveThree;
    }
    if (hasLargerThanTriangles && !counts.large.isEmpty())
        large = static_cast<quint32>(std::count(small, small + faceCount, CornerCounts::Escape));
    // Escapes were counted as what they are as bytes.
    for (quint32 i = 0; i < large; ++i) {
        const quint64 more = counts.large[firstLarge + i] - quint64(CornerCounts::Escape);
        corners += more;
        triangles += more;
    }
}

} // namespace Halvard::Orv
