/// \file
/// Finds the distinct index tuples among the corners of a range.
#pragma once

#include "Memory/GrowArray.h"
#include "Memory/ZeroedArray.h"
#include "Welding/RowHash.h"
#include "Welding/RowSlots.h"

#include <QtCore/QtGlobal>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

namespace Halvard::Orv {

/// Where the indices of corners are, one entry per corner, and how many values they select from:
/// an index from there on selects nothing, and is that number.
template <unsigned Others>
struct TupleColumns
{
    quint32 *positions = nullptr;
    quint32 positionCount = 0;
    std::array<quint32 *, Others> others = {};
    std::array<quint32, Others> otherCounts = {};

    /// The columns from a corner on.
    TupleColumns from(size_t corner) const
    {
        TupleColumns later = *this;
        later.positions += corner;
        for (quint32 *&column : later.others)
            column += corner;
        return later;
    }

    quint32 position(size_t corner) const { return std::min(positions[corner], positionCount); }
};

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

/// The tuples of a range of corners, numbered in the order in which they first appear.
///
/// Tuples of one position form a chain. A position has few of them, unless the file
/// was made to hurt, or is the tip of a large fan: a chain that has its full length
/// grows no more, and further tuples of that position go into a hash table.
///
/// There are no more tuples than corners read so far, so the indices of a tuple go
/// where those of an earlier corner were, and a corner's tuple goes where its position
/// was: fresh memory is what costs most here.
template <unsigned Others>
class TupleFinder
{
public:
    using Indices = std::array<quint32, Others>;
    static constexpr quint32 NoTuple = ~0u;

    /// \param columns from the range's first corner on.
    /// \param expectedCount tuples that there will probably be.
    TupleFinder(const TupleColumns<Others> &columns, size_t cornerCount, size_t expectedCount)
        : _columns(columns), _cornerCount(cornerCount),
          _heads(static_cast<size_t>(columns.positionCount) + 1),
          _overflow(static_cast<quint32>(cornerCount))
    {
        _positions.reserveMore(expectedCount);
        _next.reserveMore(expectedCount);
    }

    /// Finds the tuples of the next corners.
    void add(size_t begin, size_t end)
    {
        /// Corners ahead of which a chain's head is fetched.
        constexpr size_t Ahead = 16;
        // A copy, since for all the compiler knows the tuples lie over this object.
        const TupleColumns<Others> columns = _columns;
        for (size_t corner = begin; corner < end; ++corner) {
            if (_cornerCount - corner > Ahead)
                prefetch(columns.position(corner + Ahead));
            // Read before a tuple may be put where they are.
            Indices indices;
            for (unsigned i = 0; i < Others; ++i)
                indices[i] = std::min(columns.others[i][corner], columns.otherCounts[i]);
            columns.positions[corner] = findOrAppend(columns.position(corner), indices);
        }
    }

    quint32 count() const { return static_cast<quint32>(_positions.size()); }
    quint32 positionOf(quint32 tuple) const { return _positions[tuple]; }
    Indices othersOf(quint32 tuple) const
    {
        Indices indices;
        for (unsigned i = 0; i < Others; ++i)
            indices[i] = _columns.others[i][tuple];
        return indices;
    }

    void prefetch(quint32 position) const { __builtin_prefetch(_heads.data() + position); }

    /// The number of a tuple, or NoTuple: also for one that is beyond the end of a full chain.
    quint32 find(quint32 position, const Indices &others) const
    {
        for (quint32 entry = _heads[position]; entry != 0; entry = _next[entry - 1]) {
            if (isAt(entry - 1, others))
                return entry - 1;
        }
        return NoTuple;
    }

    /// The positions of all tuples.
    GrowArray<quint32> takePositions() { return std::move(_positions); }
    /// Memory that is used up: an entry per tuple, of no meaning.
    GrowArray<quint32> takeReusable() { return std::move(_next); }

private:
    static constexpr unsigned FullLength = 16;

    quint32 findOrAppend(quint32 position, const Indices &others)
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

    /// In a loop: comparing arrays as a whole calls a function.
    bool isAt(quint32 number, const Indices &others) const
    {
        bool equal = true;
        for (unsigned i = 0; i < Others; ++i)
            equal = equal && _columns.others[i][number] == others[i];
        return equal;
    }

    quint32 append(quint32 position, const Indices &others, quint32 next)
    {
        const quint32 number = count();
        _positions.append(position);
        _next.append(next);
        for (unsigned i = 0; i < Others; ++i)
            _columns.others[i][number] = others[i];
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
        const quint32 candidate = count();
        const quint32 number = _overflow.findOrInsert(
            hash(position, others), candidate,
            [this](quint32 known) { return hash(_positions[known], othersOf(known)); },
            [&](quint32 known) {
                return _positions[known] == position && othersOf(known) == others;
            });
        if (number == candidate)
            append(position, others, 0);
        return number;
    }

    const RowHash _hash;
    const TupleColumns<Others> _columns;
    const size_t _cornerCount;
    ZeroedArray<quint32> _heads; ///< per position 1 + the number of the first tuple
    GrowArray<quint32> _positions;
    GrowArray<quint32> _next; ///< 1 + the number of the next tuple in the chain
    OverflowTuples _overflow;
};

/// Without other attributes: the positions in use.
template <>
class TupleFinder<0>
{
public:
    using Indices = std::array<quint32, 0>;
    static constexpr quint32 NoTuple = ~0u;

    TupleFinder(const TupleColumns<0> &columns, size_t cornerCount, size_t expectedCount)
        : _columns(columns), _numbersPlusOne(static_cast<size_t>(columns.positionCount) + 1)
    {
        const size_t most = std::min<size_t>(columns.positionCount, cornerCount) + 2;
        _positions.reserveMore(std::max(most, expectedCount));
    }

    void add(size_t begin, size_t end)
    {
        // Copies, since for all the compiler knows the tuples lie over this object.
        const TupleColumns<0> columns = _columns;
        quint32 *const numbersPlusOne = _numbersPlusOne.data();
        quint32 *const positionOfTuple = _positions.data();
        const quint32 before = this->count();
        quint32 count = before;
        for (size_t corner = begin; corner < end; ++corner) {
            const quint32 position = columns.position(corner); // not a tuple yet
            quint32 &numberPlusOne = numbersPlusOne[position];
            // No branch, since whether a corner is the first at its position cannot be
            // predicted: the next tuple is written in any case, and counted if it is one.
            positionOfTuple[count] = position;
            const quint32 isNew = numberPlusOne == 0 ? 1 : 0;
            count += isNew;
            numberPlusOne |= count & (0 - isNew);
            columns.positions[corner] = numberPlusOne - 1;
        }
        _positions.commit(count - before);
    }

    quint32 count() const { return static_cast<quint32>(_positions.size()); }
    quint32 positionOf(quint32 tuple) const { return _positions[tuple]; }
    static Indices othersOf(quint32) { return {}; }

    void prefetch(quint32 position) const { __builtin_prefetch(_numbersPlusOne.data() + position); }

    quint32 find(quint32 position, const Indices &) const { return _numbersPlusOne[position] - 1; }

    GrowArray<quint32> takePositions() { return std::move(_positions); }
    GrowArray<quint32> takeReusable() { return std::move(_numbersPlusOne).intoArray(); }

private:
    const TupleColumns<0> _columns;
    ZeroedArray<quint32> _numbersPlusOne; ///< per position
    GrowArray<quint32> _positions;
};

} // namespace Halvard::Orv
