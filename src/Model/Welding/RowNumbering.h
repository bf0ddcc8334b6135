/// \file
/// Numbers the distinct rows of a table in order of first appearance.
#pragma once

#include "Welding/RowSlots.h"

#include <QtCore/QtGlobal>

#include <algorithm>

namespace Halvard::Orv {

/// Gives equal rows one number, counted up in the order in which they first
/// appear.
///
/// A table larger than the caches waits for memory at every look-up, so rows are
/// hashed some way ahead and their slots requested early. The rows are known
/// through
///
///     void prefetch(quint32 row) const;                 // will be hashed soon
///     quint64 hash(quint32 row) const;                  // called once per row
///     bool equalsKept(quint32 number, quint32 row) const;
///     void keep(quint32 row);                           // row gets the next number
///
/// \param numbers receives the number of each row. Entry r may share its memory
///        with what row r, and no later row, is read from.
/// \param tell called now and then with the number of rows that are done; may throw.
/// \return how many numbers there are.
template <typename Rows, typename Tell>
quint32 numberRows(Rows &rows, quint32 rowCount, quint32 *numbers, const Tell &tell)
{
    constexpr quint32 RowsBetweenTelling = 1u << 16;
    constexpr quint32 Ahead = 32;
    quint64 hashes[Ahead];
    RowSlots table(rowCount, rowCount);
    // Inlined by force: it stands in two places, and one call a row is felt.
    const auto lookAhead = [&](quint32 row) __attribute__((always_inline))
    {
        if (rowCount - row > Ahead)
            rows.prefetch(row + Ahead);
        const quint64 hash = rows.hash(row);
        hashes[row % Ahead] = hash;
        table.prefetch(hash);
    };

    for (quint32 row = 0; row < rowCount && row < Ahead; ++row)
        lookAhead(row);
    quint32 kept = 0;
    for (quint32 row = 0; row < rowCount;) {
        const quint32 end = row + std::min(RowsBetweenTelling, rowCount - row);
        for (; row < end; ++row) {
            const quint64 hash = hashes[row % Ahead];
            if (rowCount - row > Ahead)
                lookAhead(row + Ahead);
            const quint32 number = table.findOrInsert(
                hash, kept, [&](quint32 known) { return rows.equalsKept(known, row); });
            if (number == kept) {
                rows.keep(row);
                ++kept;
            }
            numbers[row] = number;
        }
        tell(row);
    }
    return kept;
}

template <typename Rows>
quint32 numberRows(Rows &rows, quint32 rowCount, quint32 *numbers)
{
    return numberRows(rows, rowCount, numbers, [](quint32) {});
}

} // namespace Halvard::Orv
