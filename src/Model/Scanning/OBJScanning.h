/// \file
/// Reads an OBJ file as bytes.
#pragma once

#include "Scanning/OBJGeometry.h"
#include "Scanning/OBJScanLimits.h"

class QIODevice;
class QString;

namespace Halvard::Orv {

class MaterialLibraries;
class Work;

/// Reads an OBJ file to its end: what an OBJReader on a QTextStream finds in it, to
/// the bit, at a hundred times the speed.
///
/// Lines are recognised as bytes. There are three ways to read one, each of which
/// passes on what it does not know:
///
/// 1. Runs (ValueRuns, FaceRuns): "v", "vt", "vn" and "f" lines as exporters write
///    them, with spaces and plain numbers that are not too long, in blocks of 16 bytes.
/// 2. Plain lines (PlainLines): any other line of plain text (see ASCIIBytes.h), byte
///    by byte.
/// 3. Odd lines (OddLines): what is no plain text, names of material libraries, and
///    faces with odd indices are decoded and go through an OBJReader.
///
/// A large file is read in pieces by several threads where `work` has some: the same to
/// the bit.
///
/// \param device open for reading, at its begin. Its text mode makes no difference.
///        An error while reading is taken for the end. May be sequential, such as a
///        pipe; is then read as a regular file of the same bytes would be. Read on the
///        calling thread, unless it is a regular file of the system.
/// \param baseDir where relative paths of material libraries begin.
/// \param libraries loads each library when its line is read, on the calling thread. Must
///        know the material "<default>". A face is in a group only if its material is
///        known when the face is read.
/// \param geometry empty before; incomplete unless the outcome is Finished.
/// \param detail set to the path of a missing library, or to the limit that is exceeded,
///        for a message.
/// \param work null: on the calling thread alone, which nobody stops. Otherwise throws
///        WorkStopped, and whatever its callback throws.
OBJScanOutcome scanOBJFile(QIODevice &device, const QString &baseDir, MaterialLibraries &libraries,
                           OBJGeometry &geometry, QString &detail, const OBJScanLimits &limits = {},
                           Work *work = nullptr);

} // namespace Halvard::Orv
