/// \file
/// A hash table of row numbers.
#pragma once

#include "Lanes/Lanes.h"
#include "Memory/ZeroedArray.h"

#include <QtCore/QtGlobal>

#include <cstddef>
#include <cstring>

namespace Halvard::Orv {

/// Finds rows by their hash: open addressing over groups of four slots.
///
/// The rows themselves live elsewhere and are known by number. A slot is 32 bits
/// wide and holds number + 1 in its low bits, 0 standing for empty, and bits of
/// the row's hash in those that numbers leave free. A row is looked at only when
/// these agree, so most slots of other rows are passed without leaving the table.
/// A group is looked at as a whole: going slot by slot would mean a mispredicted branch
/// each time, since rows lie at any distance from where their search begins.
class RowSlots
{
public:
    /// \param numberLimit every number is below it; at most 2^32 - 1.
    /// \param rowCount rows that the table has room for.
    RowSlots(quint32 numberLimit, size_t rowCount)
        : _groups(rowCount / 8 * 3 + 2), _tagMask(tagMask(numberLimit)), _room(rowCount)
    {}

    bool isFull() const { return _room == 0; }

    /// Starts fetching the group where the search for `hash` begins.
    Q_ALWAYS_INLINE void prefetch(quint64 hash) const
    {
        __builtin_prefetch(_groups.data() + home(hash), 1);
    }

    /// The number of the row that equals the one sought; `candidate`, which then
    /// stands for it, when there is none.
    /// \param isEqual whether the row of a given number equals the one sought.
    /// \pre not full.
    template <typename IsEqual>
    quint32 findOrInsert(quint64 hash, quint32 candidate, const IsEqual &isEqual)
    {
        const quint32 tag = static_cast<quint32>(hash) & _tagMask;
        for (size_t group = home(hash);; group = group + 1 == _groups.size() ? 0 : group + 1) {
            quint32 *const entries = _groups[group].entries;
            // Slots fill from the first on, so no row follows an empty slot.
            unsigned open = matching(entries, tag);
            for (; open != 0; open &= open - 1) {
                quint32 &entry = entries[__builtin_ctz(open)];
                if (entry == 0) {
                    entry = tag | (candidate + 1);
                    --_room;
                    return candidate;
                }
                const quint32 number = (entry & ~_tagMask) - 1;
                if (isEqual(number))
                    return number;
            }
        }
    }

    /// Calls `take` with every number in the table.
    template <typename Take>
    void forEach(const Take &take) const
    {
        for (size_t group = 0; group < _groups.size(); ++group) {
            for (const quint32 entry : _groups[group].entries) {
                if (entry != 0)
                    take((entry & ~_tagMask) - 1);
            }
        }
    }

private:
    struct Group
    {
        quint32 entries[4];
    };

    /// The high half of the hash, scaled to the table; tags come from the low one.
    size_t home(quint64 hash) const
    {
        return static_cast<size_t>(((hash >> 32) * _groups.size()) >> 32);
    }

    /// One bit per slot that is empty or has the tag.
    unsigned matching(const quint32 *entries, quint32 tag) const
    {
        Mask4 group;
        std::memcpy(&group, entries, sizeof group);
        const Mask4 tags = group & static_cast<int>(_tagMask);
        return lanesOf((tags == static_cast<int>(tag)) | (group == 0));
    }

    static quint32 tagMask(quint32 numberLimit)
    {
        quint32 mask = ~0u;
        while ((numberLimit & mask) != 0)
            mask <<= 1;
        return mask;
    }

    ZeroedArray<Group> _groups;
    quint32 _tagMask;
    size_t _room;
};

} // namespace Halvard::Orv
