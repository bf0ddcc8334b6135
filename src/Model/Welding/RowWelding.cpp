#include "Welding/RowWelding.h"

#include "Welding/RowHash.h"
#include "Welding/RowNumbering.h"

#include <cstring>

namespace Halvard::Orv {

namespace {

/// The rows of a table whose columns lie anywhere. Rows stay where they are and
/// are compared in place: nothing is allocated per row.
class TableRows
{
public:
    TableRows(const QVector<RowColumn> &columns, QVector<int> &newToOld)
        : _columns(columns), _newToOld(newToOld)
    {}

    /// Rows are read in order, which the machine foresees.
    void prefetch(quint32) const {}

    quint64 hash(quint32 row) const
    {
        quint64 value = _hash.start();
        for (const RowColumn &column : _columns)
            value = _hash.addBytes(value, bytes(column, row), column.rowBytes);
        return value;
    }

    bool equalsKept(quint32 number, quint32 row) const
    {
        const auto old = static_cast<quint32>(_newToOld.at(static_cast<int>(number)));
        for (const RowColumn &column : _columns) {
            if (std::memcmp(bytes(column, old), bytes(column, row), column.rowBytes) != 0)
                return false;
        }
        return true;
    }

    void keep(quint32 row) { _newToOld.append(static_cast<int>(row)); }

private:
    static const char *bytes(const RowColumn &column, quint32 row)
    {
        return column.bytes + row * column.rowBytes;
    }

    const RowHash _hash;
    const QVector<RowColumn> &_columns;
    QVector<int> &_newToOld;
};

} // namespace

void weldRows(const QVector<RowColumn> &columns, int rowCount, QVector<int> &oldToNew,
              QVector<int> &newToOld)
{
    oldToNew.resize(rowCount);
    newToOld.resize(0);
    TableRows rows(columns, newToOld);
    static_assert(sizeof(int) == sizeof(quint32), "row numbers are written in place");
    numberRows(rows, static_cast<quint32>(rowCount), reinterpret_cast<quint32 *>(oldToNew.data()));
}

} // namespace Halvard::Orv
