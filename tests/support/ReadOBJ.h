/// \file
/// One OBJ file read in two ways, as plain values that can be compared. Knows the library's
/// internals.
#pragma once

#include "support/PlainModel.h"

#include "Scanning/OBJScanning.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <string>
#include <vector>

class QIODevice;

namespace Halvard::Orv {
class Work;
} // namespace Halvard::Orv

namespace OrvTest {

/// What reading an OBJ file finds. The model's first group is "<default>".
struct ReadOBJ
{
    Halvard::Orv::OBJScanOutcome outcome = Halvard::Orv::OBJScanOutcome::Finished;
    QString libraryPath;
    PlainModel model;
};

/// Reads with QTextStream, OBJReader and the builder's streams. After a missing
/// library only `outcome` and `libraryPath` are set.
ReadOBJ readByLines(QIODevice &device, const QString &baseDir = {});

/// Reads as bytes. Unless it has finished only `outcome` and `libraryPath`, which is also the
/// limit exceeded, are set.
ReadOBJ readAsBytes(QIODevice &device, const QString &baseDir = {},
                    const Halvard::Orv::OBJScanLimits &limits = {},
                    Halvard::Orv::Work *work = nullptr);

/// The same, of a file that consists of `text`.
ReadOBJ readByLines(const QByteArray &text);
ReadOBJ readAsBytes(const QByteArray &text, const Halvard::Orv::OBJScanLimits &limits = {});

/// One line per difference: see ModelDifferences.h.
std::vector<std::string> differences(const ReadOBJ &lines, const ReadOBJ &bytes);

/// The text as a C string would have it, cut when it is long.
std::string printable(const QByteArray &text);

} // namespace OrvTest
