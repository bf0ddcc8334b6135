/// \file
/// The line path of the OBJ loader: every line through an OBJReader into a builder.
#pragma once

#include "Scanning/OBJScanLimits.h"

class QString;
class QTextStream;

namespace Halvard::Orv {

class MaterialLibraries;
class ModelBuilder;
class Work;

/// Reads the lines of an OBJ file into a builder, one by one. This defines what a file
/// means: the loader's fast path gives the same.
///
/// \param stream at the beginning of the file; read to its end.
/// \param baseDir where relative paths of material libraries begin.
/// \param builder holds the group "<default>" and no geometry.
/// \param libraries of that builder.
/// \param detail as of scanOBJFile().
/// \param limits only those on elements: an overlong line is more than a QString
///        holds, and ends in std::bad_alloc.
/// \param work is told how far reading is, where not null.
/// \return anything but NeedsLineReader.
OBJScanOutcome readOBJLines(QTextStream &stream, const QString &baseDir, ModelBuilder &builder,
                            MaterialLibraries &libraries, QString &detail,
                            const OBJScanLimits &limits = {}, Work *work = nullptr);

} // namespace Halvard::Orv
