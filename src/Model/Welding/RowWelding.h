/// \file
/// Finds equal rows of bytes.
#pragma once

#include <QtCore/QVector>

#include <cstddef>

namespace Halvard::Orv {

/// One column of a table of rows: `rowBytes` bytes per row, rows packed.
struct RowColumn
{
    const char *bytes;
    size_t rowBytes;
};

/// Numbers the distinct rows of a table in order of first appearance.
///
///     rows  A B C C B D    oldToNew  0 1 2 2 1 3    newToOld  0 1 2 5
///
/// Rows are equal when all their bytes are; there is no tolerance.
///
/// \param oldToNew receives the number of each row.
/// \param newToOld receives the first row of each number.
void weldRows(const QVector<RowColumn> &columns, int rowCount, QVector<int> &oldToNew,
              QVector<int> &newToOld);

} // namespace Halvard::Orv
