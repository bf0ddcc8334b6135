// Corners with the same indices are the same vertex, and comparing two or three
// indices costs far less than comparing the values behind them: only the distinct
// tuples, a fifth of the corners in most models, have to be welded by their bytes.
//
// Tuples of one position form a chain. A position has few of them, unless the file
// was made to hurt, or is the tip of a large fan: a chain that has its full length
// grows no more, and further tuples of that position go into a hash table.
//
// There are no more tuples than corners read so far, so the indices of a tuple go
// where those of an earlier corner were: fresh memory is what costs most here.
#include "Preparing/IndexTuples.h"

#include "Memory/ZeroedArray.h"
#include "Welding/RowHash.h"
#include "Welding/RowSlots.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace Halvard::Orv {

namespace {

/// Tuples beyond the ends of full chains.
class OverflowTuples
{
public:
    explicit OverflowTuples(quint32 tupleLimit)
        : _tupleLimit(tupleLimit), _slots(tupleLimit, FirstRoom)
    {}

    /// The number of the tuple, or `candidate` if it is new here.
    /// \param hashOf the hash of a tuple by its number.
    /// \param isEqual whether a tuple, by its number, is the one sought.
    template <typename HashOf, typename IsEqual>
    quint32 findOrInsert(quint64 hash, quint32 candidate, const HashOf &hashOf,
                         const IsEqual &isEqual)
    {
        if (_slots.isFull())
            grow(hashOf);
        return _slots.findOrInsert(hash, candidate, isEqual);
    }

private:
    static constexpr size_t FirstRoom = 1024;

    template <typename HashOf>
    void grow(const HashOf &hashOf)
    {
        _room *= 2;
        RowSlots larger(_tupleLimit, _room);
        _slots.forEach([&](quint32 number) {
            larger.findOrInsert(hashOf(number), number, [](quint32) { return false; });
        });
        _slots = std::move(larger);
    }

    quint32 _tupleLimit;
    size_t _room = FirstRoom;
    RowSlots _slots;
};

/// All tuples, found by position first.
template <unsigned Others>
class TupleChains
{
public:
    using Indices = std::array<quint32, Others>;

    /// \param expectedCount tuples that there will probably be.
    /// \param others where the other indices of the tuples go.
    TupleChains(quint32 positionCount, quint32 cornerCount, size_t expectedCount,
                const std::array<quint32 *, Others> &others)
        : _heads(static_cast<size_t>(positionCount) + 1), _others(others), _overflow(cornerCount)
    {
        _positions.reserveMore(expectedCount);
        _next.reserveMore(expectedCount);
    }

    void prefetch(quint32 position) const { __builtin_prefetch(_heads.data() + position); }

    quint32 find(quint32 position, const Indices &others)
    {
        quint32 &head = _heads[position];
        unsigned length = 0;
        for (quint32 entry = head; entry != 0; entry = _next[entry - 1]) {
            if (isAt(entry - 1, others))
                return entry - 1;
            if (++length == FullLength)
                return findInOverflow(position, others);
        }
        head = 1 + append(position, others, head);
        return head - 1;
    }

    /// Moves the tuples' positions out, and the memory of the chains.
    void takeInto(IndexTuples &tuples)
    {
        tuples.positions = std::move(_positions);
        tuples.reusable = std::move(_next);
    }

private:
    static constexpr unsigned FullLength = 16;

    /// In a loop: comparing arrays as a whole calls a function.
    bool isAt(quint32 number, const Indices &others) const
    {
        bool equal = true;
        for (unsigned i = 0; i < Others; ++i)
            equal = equal && _others[i][number] == others[i];
        return equal;
    }

    Indices at(quint32 number) const
    {
        Indices indices;
        for (unsigned i = 0; i < Others; ++i)
            indices[i] = _others[i][number];
        return indices;
    }

    quint32 append(quint32 position, const Indices &others, quint32 next)
    {
        const auto number = static_cast<quint32>(_positions.size());
        _positions.append(position);
        _next.append(next);
        for (unsigned i = 0; i < Others; ++i)
            _others[i][number] = others[i];
        return number;
    }

    quint64 hash(quint32 position, const Indices &others) const
    {
        quint64 second = 0;
        std::memcpy(&second, others.data(), sizeof others);
        return _hash.add(_hash.start(), position, second);
    }

    Q_NEVER_INLINE quint32 findInOverflow(quint32 position, const Indices &others)
    {
        const auto candidate = static_cast<quint32>(_positions.size());
        const quint32 number = _overflow.findOrInsert(
            hash(position, others), candidate,
            [this](quint32 known) { return hash(_positions[known], at(known)); },
            [&](quint32 known) { return _positions[known] == position && at(known) == others; });
        if (number == candidate)
            append(position, others, 0);
        return number;
    }

    const RowHash _hash;
    ZeroedArray<quint32> _heads; ///< per position 1 + the number of the first tuple
    std::array<quint32 *, Others> _others;
    GrowArray<quint32> _positions;
    GrowArray<quint32> _next; ///< 1 + the number of the next tuple in the chain
    OverflowTuples _overflow;
};

/// Most values belong to one tuple only, so the largest number of values is close
/// to the number of tuples.
size_t expectedTuples(size_t positionCount, const std::vector<CornerIndices> &others)
{
    size_t largest = positionCount;
    for (const CornerIndices &column : others)
        largest = std::max<size_t>(largest, column.valueCount);
    return largest + largest / 8;
}

template <unsigned Others>
IndexTuples numberTuples(CornerIndices &&positions, std::vector<CornerIndices> &&others)
{
    /// Corners ahead of which a chain's head is fetched.
    constexpr size_t Ahead = 16;

    std::array<quint32 *, Others> indicesOf;
    std::array<quint32, Others> nothing;
    for (unsigned i = 0; i < Others; ++i) {
        indicesOf[i] = others[i].indices.data();
        nothing[i] = others[i].valueCount;
    }
    const quint32 positionCount = positions.valueCount;
    const size_t count = positions.indices.size();
    TupleChains<Others> chains(positionCount, static_cast<quint32>(count),
                               expectedTuples(positionCount, others), indicesOf);
    const quint32 *const positionOf = positions.indices.data();
    quint32 *const tupleOf = positions.indices.data(); // the same memory, behind what is read
    for (size_t corner = 0; corner < count; ++corner) {
        if (count - corner > Ahead)
            chains.prefetch(std::min(positionOf[corner + Ahead], positionCount));
        // Read before find() may put a tuple where they are.
        typename TupleChains<Others>::Indices indices;
        for (unsigned i = 0; i < Others; ++i)
            indices[i] = std::min(indicesOf[i][corner], nothing[i]);
        tupleOf[corner] = chains.find(std::min(positionOf[corner], positionCount), indices);
    }
    IndexTuples tuples;
    tuples.tupleOfCorner = std::move(positions.indices);
    chains.takeInto(tuples);
    for (CornerIndices &column : others) {
        tuples.others.push_back(std::move(column.indices));
        tuples.others.back().resize(tuples.count());
    }
    return tuples;
}

/// Without other attributes: the positions in use.
IndexTuples numberPositions(CornerIndices &&positions)
{
    const quint32 positionCount = positions.valueCount;
    ZeroedArray<quint32> numbersPlusOne(static_cast<size_t>(positionCount) + 1);
    IndexTuples tuples;
    quint32 *const positionOfTuple = tuples.positions.reserveMore(size_t(positionCount) + 2);
    quint32 count = 0;
    tuples.tupleOfCorner = std::move(positions.indices);
    quint32 *const end = tuples.tupleOfCorner.data() + tuples.tupleOfCorner.size();
    for (quint32 *corner = tuples.tupleOfCorner.data(); corner != end; ++corner) {
        const quint32 position = std::min(*corner, positionCount); // not a tuple yet
        quint32 &numberPlusOne = numbersPlusOne[position];
        // No branch, since whether a corner is the first at its position cannot be
        // predicted: the next tuple is written in any case, and counted if it is one.
        positionOfTuple[count] = position;
        const quint32 isNew = numberPlusOne == 0 ? 1 : 0;
        count += isNew;
        numberPlusOne |= count & (0 - isNew);
        *corner = numberPlusOne - 1;
    }
    tuples.positions.commit(count);
    tuples.reusable = std::move(numbersPlusOne).intoArray();
    tuples.reusable.resize(count);
    return tuples;
}

} // namespace

IndexTuples numberIndexTuples(CornerIndices &&positions, std::vector<CornerIndices> &&others)
{
    switch (others.size()) {
    case 0:
        return numberPositions(std::move(positions));
    case 1:
        return numberTuples<1>(std::move(positions), std::move(others));
    default:
        return numberTuples<2>(std::move(positions), std::move(others));
    }
}

} // namespace Halvard::Orv
