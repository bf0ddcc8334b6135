// Any text through an MTLReader, with and without unknown keywords.
#include "support/LineInput.h"

#include <OrvModel/MTLReader.h>

using namespace Halvard::Orv;
using namespace OrvFuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    LineInput input(data, size);
    const unsigned choice = input.choice;
    const bool skipsUnknown = choice & 2;
    MTLReader reader(input.stream, skipsUnknown);
    if (choice & 4)
        reader.setBaseDir(QStringLiteral("/base"));
    require(!reader.parseLine(), "a line is there before the first");

    std::size_t lines = 0;
    for (reader.next(); reader.valid(); reader.next()) {
        require(++lines <= size, "more lines than bytes");
        const int type = reader.getLineType();
        require(type >= MTLReader::LINE_NEWMTL && type <= MTLReader::LINE_UNKNOWN,
                "a line of no type");
        require(type != MTLReader::LINE_UNKNOWN || !skipsUnknown, "an unknown line is not skipped");
        require(!reader.line().isEmpty() && !reader.line().contains(QLatin1Char('#')),
                "a line without content, or with its comment");
        const bool parsed = reader.parseLine();
        require(!parsed || type != MTLReader::LINE_UNKNOWN, "an unknown line is parsed");
        if (choice & 8)
            reader.parseLine(); // goes on behind what it has read
        require(reader.getLineType() == type, "parsing changed the type of the line");
    }
    reader.next();
    require(!reader.valid() && !reader.parseLine(), "something comes after the end");
    return 0;
}
