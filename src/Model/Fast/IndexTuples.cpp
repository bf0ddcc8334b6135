// Corners with the same indices are the same vertex, and comparing two or three
// indices costs far less than comparing the values behind them: only the distinct
// tuples, a fifth of the corners in most models, have to be welded by their bytes.
//
// Tuples of one position form a chain. A position has few of them, unless the file
// was made to hurt, or is the tip of a large fan: a chain that has its full length
// grows no more, and further tuples of that position go into a hash table.
#include "IndexTuples.h"

#include "LargeMemory.h"
#include "RowHash.h"
#include "RowSlots.h"
#include "ZeroedArray.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace Halvard::Orv {

namespace {

/// Tuples beyond the ends of full chains.
template <unsigned Others>
class OverflowTuples
{
public:
    using Indices = std::array<quint32, Others>;

    explicit OverflowTuples(quint32 tupleLimit)
        : _tupleLimit(tupleLimit), _slots(tupleLimit, FirstRoom)
    {}

    /// The number of the tuple, or `candidate` if it is new here.
    /// \param words all tuples by number, for comparing and for growing.
    quint32 findOrInsert(quint32 position, const Indices &others, quint32 candidate,
                         const quint32 *words, unsigned stride)
    {
        if (_slots.isFull())
            grow(words, stride);
        return _slots.findOrInsert(hash(position, others.data()), candidate, [&](quint32 number) {
            const quint32 *tuple = words + static_cast<size_t>(number) * stride;
            return tuple[0] == position && std::equal(others.begin(), others.end(), tuple + 1);
        });
    }

private:
    static constexpr size_t FirstRoom = 1024;

    quint64 hash(quint32 position, const quint32 *others) const
    {
        quint64 second = 0;
        std::memcpy(&second, others, sizeof(Indices));
        return _hash.add(_hash.start(), position, second);
    }

    void grow(const quint32 *words, unsigned stride)
    {
        _room *= 2;
        RowSlots larger(_tupleLimit, _room);
        _slots.forEach([&](quint32 number) {
            const quint32 *tuple = words + static_cast<size_t>(number) * stride;
            larger.findOrInsert(hash(tuple[0], tuple + 1), number, [](quint32) { return false; });
        });
        _slots = std::move(larger);
    }

    const RowHash _hash;
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

    /// Position, other indices, and 1 + the number of the next tuple in the chain.
    static constexpr unsigned Stride = Others + 2;

    /// \param expectedCount tuples that there will probably be.
    TupleChains(quint32 positionCount, quint32 cornerCount, size_t expectedCount)
        : _heads(static_cast<size_t>(positionCount) + 1), _overflow(cornerCount)
    {
        reserveLarge(_words, expectedCount * Stride);
    }

    void prefetch(quint32 position) const { __builtin_prefetch(_heads.data() + position); }

    quint32 find(quint32 position, const Indices &others)
    {
        quint32 &head = _heads[position];
        unsigned length = 0;
        for (quint32 entry = head; entry != 0;) {
            const quint32 *tuple = at(entry - 1);
            if (std::equal(others.begin(), others.end(), tuple + 1))
                return entry - 1;
            if (++length == FullLength)
                return findInOverflow(position, others);
            entry = tuple[1 + Others];
        }
        head = 1 + append(position, others, head);
        return head - 1;
    }

    GrowArray<quint32> takeWords() { return std::move(_words); }

private:
    static constexpr unsigned FullLength = 16;

    const quint32 *at(quint32 number) const
    {
        return _words.data() + static_cast<size_t>(number) * Stride;
    }

    quint32 append(quint32 position, const Indices &others, quint32 next)
    {
        quint32 *tuple = _words.reserveMore(Stride);
        tuple[0] = position;
        std::copy(others.begin(), others.end(), tuple + 1);
        tuple[1 + Others] = next;
        _words.commit(Stride);
        return _count++;
    }

    Q_NEVER_INLINE quint32 findInOverflow(quint32 position, const Indices &others)
    {
        const quint32 number =
            _overflow.findOrInsert(position, others, _count, _words.data(), Stride);
        if (number == _count)
            append(position, others, 0);
        return number;
    }

    ZeroedArray<quint32> _heads; ///< per position 1 + the number of the first tuple
    GrowArray<quint32> _words;
    quint32 _count = 0;
    OverflowTuples<Others> _overflow;
};

/// One attribute's indices during the walk over the corners. Past their end it
/// stands still on an index that selects nothing.
class IndexCursor
{
public:
    explicit IndexCursor(const CornerIndices &corners)
        : _at(corners.indices), _end(corners.count), _nothing(corners.valueCount)
    {}

    /// Prepares for the corners from `corner` on.
    void enter(size_t corner)
    {
        if (corner >= _end) {
            _at = &NoIndex;
            _step = 0;
        }
    }

    quint32 next()
    {
        const quint32 index = *_at;
        _at += _step;
        return std::min(index, _nothing);
    }

    size_t end() const { return _end; }

private:
    static constexpr quint32 NoIndex = ~0u;

    const quint32 *_at;
    size_t _end;
    quint32 _nothing;
    size_t _step = 1;
};

template <unsigned Others>
class CornerWalk
{
public:
    CornerWalk(GrowArray<quint32> &corners, quint32 positionCount,
               const std::vector<CornerIndices> &others)
        : _corners(corners), _positionCount(positionCount),
          _chains(positionCount, static_cast<quint32>(corners.size()),
                  expectedTuples(positionCount, others))
    {
        for (const CornerIndices &indices : others)
            _cursors.emplace_back(indices);
    }

    IndexTuples run()
    {
        // Between two ends of index arrays, all cursors do the same at each corner.
        std::vector<size_t> ends = {_corners.size()};
        for (const IndexCursor &cursor : _cursors)
            ends.push_back(cursor.end());
        std::sort(ends.begin(), ends.end());
        size_t corner = 0;
        for (const size_t end : ends) {
            for (IndexCursor &cursor : _cursors)
                cursor.enter(corner);
            walk(corner, end);
            corner = end;
        }
        return {TupleChains<Others>::Stride, _chains.takeWords()};
    }

private:
    /// Corners ahead of which a chain's head is fetched.
    static constexpr size_t Ahead = 16;

    /// Most values belong to one tuple only, so the largest number of values is
    /// close to the number of tuples.
    static size_t expectedTuples(size_t positionCount, const std::vector<CornerIndices> &others)
    {
        size_t largest = positionCount;
        for (const CornerIndices &indices : others)
            largest = std::max<size_t>(largest, indices.valueCount);
        return largest + largest / 8;
    }

    void walk(size_t begin, size_t end)
    {
        quint32 *corners = _corners.data();
        // Copies: what the loop changes stays in registers.
        std::array<IndexCursor, Others> cursors = copyCursors(std::make_index_sequence<Others>());
        for (size_t corner = begin; corner < end; ++corner) {
            if (end - corner > Ahead)
                _chains.prefetch(std::min(corners[corner + Ahead], _positionCount));
            typename TupleChains<Others>::Indices indices;
            for (unsigned i = 0; i < Others; ++i)
                indices[i] = cursors[i].next();
            corners[corner] = _chains.find(std::min(corners[corner], _positionCount), indices);
        }
        std::copy(cursors.begin(), cursors.end(), _cursors.begin());
    }

    template <size_t... I>
    std::array<IndexCursor, Others> copyCursors(std::index_sequence<I...>) const
    {
        return {_cursors[I]...};
    }

    GrowArray<quint32> &_corners;
    quint32 _positionCount;
    TupleChains<Others> _chains;
    std::vector<IndexCursor> _cursors;
};

/// Without other attributes: the positions in use.
IndexTuples numberPositions(GrowArray<quint32> &corners, quint32 positionCount)
{
    ZeroedArray<quint32> numbersPlusOne(static_cast<size_t>(positionCount) + 1);
    IndexTuples tuples = {1, {}};
    quint32 *const positions = reserveLarge(tuples.words, static_cast<size_t>(positionCount) + 2);
    quint32 count = 0;
    quint32 *const end = corners.data() + corners.size();
    for (quint32 *corner = corners.data(); corner != end; ++corner) {
        const quint32 position = std::min(*corner, positionCount);
        quint32 &numberPlusOne = numbersPlusOne[position];
        // Whether a corner is the first at its position cannot be foreseen, so
        // there is no branch: the next tuple is written in any case, and counted
        // if it is one.
        positions[count] = position;
        const quint32 isNew = numberPlusOne == 0 ? 1 : 0;
        count += isNew;
        numberPlusOne |= count & (0 - isNew);
        *corner = numberPlusOne - 1;
    }
    tuples.words.commit(count);
    return tuples;
}

} // namespace

IndexTuples numberIndexTuples(GrowArray<quint32> &corners, quint32 positionCount,
                              const std::vector<CornerIndices> &others)
{
    switch (others.size()) {
    case 0:
        return numberPositions(corners, positionCount);
    case 1:
        return CornerWalk<1>(corners, positionCount, others).run();
    default:
        return CornerWalk<2>(corners, positionCount, others).run();
    }
}

} // namespace Halvard::Orv
