// Any text through an OBJReader, also with calls that no loader makes.
#include "support/LineInput.h"

#include <OrvModel/OBJReader.h>

#include <vector>

using namespace Halvard::Orv;
using namespace OrvFuzz;

namespace {

std::vector<int> cornersOf(const OBJReader &reader)
{
    std::vector<int> corners;
    for (int i = 0; i < reader.getNumVertices(); ++i) {
        const OBJReader::Vertex corner = reader.getVertex(i);
        corners.insert(corners.end(), {corner.v, corner.vn, corner.vt});
    }
    return corners;
}

/// The line parsed once more, and as the face that it may not be: both must be
/// possible at any time.
void parseAgain(OBJReader &reader, bool parsed)
{
    const std::vector<int> corners = cornersOf(reader);
    const QString name = reader.getUsemtlName();
    require(reader.parseLine() == parsed, "a line parses or it does not");
    require(cornersOf(reader) == corners, "a face parsed again has other corners");
    const bool isRelative = QDir::isRelativePath(name);
    require(reader.getUsemtlName() == name || isRelative, "a name parsed again is another one");
    reader.parseVerts();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    LineInput input(data, size);
    const unsigned choice = input.choice;
    OBJReader reader(input.stream);
    if (choice & 2)
        reader.setBaseDir(QStringLiteral("/base"));

    std::size_t lines = 0;
    for (; reader.valid(); reader.next()) {
        require(++lines <= size, "more lines than bytes");
        const int type = reader.getLineType();
        require(type >= OBJReader::LINE_V && type < OBJReader::LINE_EOF, "a line of no type");
        const bool parsed = reader.parseLine();
        if (choice & 4)
            parseAgain(reader, parsed);
        require(reader.getLineType() == type, "parsing changed the type of the line");
    }
    reader.next();
    require(!reader.valid() && !reader.parseLine(), "something comes after the end");
    return 0;
}
