/// \file
/// One OBJ file read in two ways, as plain values that can be compared.
#pragma once

#include "Scanning/OBJScanning.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

class QIODevice;

namespace OrvTest {

struct ReadAttribute
{
    std::vector<std::uint32_t> values; ///< the floats' bits
    std::vector<std::uint32_t> indices;
};

/// What reading an OBJ file finds.
struct ReadOBJ
{
    Halvard::Orv::OBJScanOutcome outcome = Halvard::Orv::OBJScanOutcome::Finished;
    std::string libraryPath;
    ReadAttribute positions;
    ReadAttribute normals;
    ReadAttribute texCoords;
    std::vector<std::uint32_t> cornerCounts;
    /// Material and faces of the groups that have faces, by their first face.
    std::vector<std::pair<std::string, std::vector<std::uint32_t>>> groups;
    std::map<std::string, int> materialIds;
};

/// Reads with QTextStream, OBJReader and the builder's streams. After a missing
/// library only `outcome` and `libraryPath` are set.
ReadOBJ readByLines(QIODevice &device, const QString &baseDir = {});

/// Reads as bytes. Unless it has finished only `outcome` and `libraryPath` are set.
ReadOBJ readAsBytes(QIODevice &device, const QString &baseDir = {},
                    const Halvard::Orv::OBJScanLimits &limits = {});

/// The same, of a file that consists of `text`.
ReadOBJ readByLines(const QByteArray &text);
ReadOBJ readAsBytes(const QByteArray &text, const Halvard::Orv::OBJScanLimits &limits = {});

/// What differs first; empty when nothing does.
std::string difference(const ReadOBJ &bytes, const ReadOBJ &lines);

/// The text as a C string would have it, cut when it is long.
std::string printable(const QByteArray &text);

} // namespace OrvTest
