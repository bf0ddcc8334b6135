// The loader's two paths on the same text: every byte that would go to the GPU, every
// material and every message must be the same.
#include "support/Fuzzing.h"
#include "support/PreparedOBJ.h"

#include <QtCore/QTextCodec>

#include <vector>

using namespace Halvard::Orv;
using namespace OrvFuzz;

namespace {

/// Most texts as UTF-8, some as the codec of another locale would have them.
void chooseCodec(unsigned choice)
{
    static QTextCodec *const codecs[] = {
        QTextCodec::codecForName("UTF-8"), QTextCodec::codecForName("ISO-8859-1"),
        QTextCodec::codecForName("windows-1251"), QTextCodec::codecForName("Shift_JIS")};
    QTextCodec::setCodecForLocale(codecs[choice % 16 < 12 ? 0 : choice % 4]);
}

/// QTextStream decodes this many bytes at a time.
constexpr int PieceBytes = 1 << 14;

/// The text behind a comment so long that a piece ends somewhere in the text: at a byte
/// beyond ASCII if there is one, since characters are cut there.
QByteArray withBorderInside(const QByteArray &obj, unsigned choice)
{
    std::vector<int> places;
    for (int i = 0; i < obj.size(); ++i) {
        if (obj.at(i) & 0x80)
            places.push_back(i);
    }
    if (places.empty())
        places.push_back(obj.size() / 2);
    const int before = places[choice % places.size()];
    return '#' + QByteArray(PieceBytes - 2 - before, '-') + '\n' + obj;
}

/// Chunks so small that lines are cut everywhere, or one that holds the whole text; and
/// now and then room for a few values only.
OBJScanLimits limitsOf(unsigned choice)
{
    OBJScanLimits limits = largeChunks();
    if (choice % 3 != 0)
        limits.chunkBytes = 1 + choice / 3 % 97;
    if (choice % 7 == 0)
        limits.streamElements = 1 + choice / 7 % 50;
    return limits;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const ModelText text(asText(data, size));
    if (namesLibraryByPath(text.obj))
        return 0;
    const unsigned choice = choiceOf(text.obj);
    chooseCodec(choice >> 8);
    LibraryDirectory &libraries = LibraryDirectory::instance();
    libraries.write(text.mtl);

    const bool hasBorder = choice % 5 == 0;
    const QByteArray obj = hasBorder ? withBorderInside(text.obj, choice >> 4) : text.obj;
    const OBJScanLimits limits = hasBorder ? largeChunks() : limitsOf(choice);
    const PreparedOBJ bytes = prepareByBytes(obj, libraries.path(), limits);
    if (bytes.outcome == OBJScanOutcome::NeedsLineReader)
        return 0; // the line path is all there is
    std::string differing;
    for (const std::string &line :
         differences(prepareByLines(obj, libraries.path(), limits), bytes))
        differing += "\n    " + line;
    if (!differing.empty())
        fail("by lines and as bytes:" + differing);
    return 0;
}
