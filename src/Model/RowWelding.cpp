// Open addressing with linear probing over row numbers: rows stay where they
// are and are compared in place, so that nothing is allocated per row.
#include "RowWelding.h"

#include <QtCore/QHash>

#include <cstdint>
#include <cstring>
#include <vector>

namespace Halvard::Orv {

namespace {

constexpr int EmptySlot = -1;

/// Mixes eight bytes into a hash: the two halves of a full 64 x 64 bit product,
/// folded, as in W. Yi's wyhash (2019).
uint64_t mix(uint64_t hash, uint64_t word)
{
    __extension__ using Wide = unsigned __int128;
    const Wide product =
        static_cast<Wide>(hash ^ 0x9E3779B97F4A7C15u) * (word ^ 0xD6E8FEB86659FD93u);
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

uint64_t hashBytes(uint64_t hash, const char *bytes, size_t count)
{
    for (; count >= sizeof(uint64_t); count -= sizeof(uint64_t), bytes += sizeof(uint64_t)) {
        uint64_t word;
        std::memcpy(&word, bytes, sizeof word);
        hash = mix(hash, word);
    }
    if (count > 0) {
        uint64_t word = 0;
        std::memcpy(&word, bytes, count);
        hash = mix(hash, word);
    }
    return hash;
}

class RowTable
{
public:
    RowTable(const QVector<RowColumn> &columns, int rowCount) : _columns(columns)
    {
        size_t slots = 16;
        while (slots < 2 * static_cast<size_t>(rowCount))
            slots *= 2;
        _slots.assign(slots, EmptySlot);
    }

    /// The entry for the row: either EmptySlot, to be filled by the caller, or
    /// whatever was stored there for an equal row, which `rowOf` finds.
    template <typename RowOf>
    int &find(int row, RowOf rowOf)
    {
        const size_t mask = _slots.size() - 1;
        size_t slot = static_cast<size_t>(hash(row)) & mask;
        while (_slots[slot] != EmptySlot && !equal(rowOf(_slots[slot]), row))
            slot = (slot + 1) & mask;
        return _slots[slot];
    }

private:
    uint64_t hash(int row) const
    {
        // Seeded per process like Qt's own hashes, so that a file cannot be made
        // whose rows all collide. The numbering does not depend on it.
        uint64_t value = static_cast<uint64_t>(static_cast<uint32_t>(qGlobalQHashSeed()));
        for (const RowColumn &column : _columns)
            value = hashBytes(value, bytes(column, row), column.rowBytes);
        return value;
    }

    bool equal(int first, int second) const
    {
        for (const RowColumn &column : _columns) {
            if (std::memcmp(bytes(column, first), bytes(column, second), column.rowBytes) != 0)
                return false;
        }
        return true;
    }

    static const char *bytes(const RowColumn &column, int row)
    {
        return column.bytes + static_cast<size_t>(row) * column.rowBytes;
    }

    const QVector<RowColumn> &_columns;
    std::vector<int> _slots;
};

} // namespace

void weldRows(const QVector<RowColumn> &columns, int rowCount, QVector<int> &oldToNew,
              QVector<int> &newToOld)
{
    oldToNew.resize(rowCount);
    newToOld.resize(0);
    RowTable table(columns, rowCount);
    for (int row = 0; row < rowCount; ++row) {
        int &number = table.find(row, [&](int known) { return newToOld.at(known); });
        if (number == EmptySlot) {
            number = newToOld.size();
            newToOld.append(row);
        }
        oldToNew[row] = number;
    }
}

} // namespace Halvard::Orv
