/// \file
/// Tables of models before and after a repair.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <string>
#include <vector>

namespace OrvTest {

/// A file of a model's folder. One whose name ends in ".png" is made an image.
struct RowFile
{
    const char *name;
    QByteArray contents;
};

struct RepairRow
{
    const char *name;
    QByteArray model;                 ///< model.obj
    std::vector<RowFile> files;       ///< What lies beside it.
    QByteArray fixed;                 ///< fixed.obj, written in the same folder.
    QByteArray library;               ///< fixed.mtl; null where none is written.
    std::vector<std::string> changes; ///< "FILE:LINE CODE SUBJECT COUNT" each, in order.
};

/// Repairs the model of each row, and compares what is written and told; then repairs the result,
/// which has to come out identical.
void expectRows(const std::vector<RepairRow> &rows);

} // namespace OrvTest
