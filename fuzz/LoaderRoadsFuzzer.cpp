// The loader's two roads on the same text: every byte that would go to the GPU, every
// material and every message must be the same.
#include "support/Fuzzing.h"
#include "support/PreparedOBJ.h"

#include <QtCore/QTextCodec>

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

/// Chunks so small that lines are cut everywhere, and one that holds the whole text.
std::size_t chunkOf(unsigned choice)
{
    return choice % 3 == 0 ? LargeChunk : 1 + choice / 3 % 97;
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

    const PreparedOBJ bytes = prepareByBytes(text.obj, libraries.path(), chunkOf(choice & 0xff));
    if (bytes.needsLineReader)
        return 0; // the line road is all there is
    const std::string differs = difference(bytes, prepareByLines(text.obj, libraries.path()));
    if (!differs.empty())
        fail("as bytes and by lines: " + differs);
    return 0;
}
