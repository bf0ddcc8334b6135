// A repair of any model with its library keeps its promises: what is fixable is gone, no face is
// lost that was drawn, a clean model comes out identical, and another repair changes nothing.
#include "support/Fuzzing.h"
#include "support/PreparedOBJ.h"

#include "Check/Repairs/RepairProperties.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
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

/// Takes away what other inputs left.
void clear(const QDir &directory)
{
    for (const QString &name : directory.entryList(QDir::Files)) {
        if (name != QLatin1String("m.mtl"))
            QFile::remove(directory.filePath(name));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const ModelText text(asText(data, size));
    // A repair reads backslashes as slashes, where that leads to a file.
    if (namesLibraryByPath(QByteArray(text.obj).replace('\\', '/')))
        return 0;
    chooseCodec(choiceOf(text.obj));
    LibraryDirectory &libraries = LibraryDirectory::instance();
    libraries.write(text.mtl);
    const QDir directory(libraries.path());
    clear(directory);
    QFile file(directory.filePath(QStringLiteral("model.obj")));
    require(file.open(QIODevice::WriteOnly) && file.write(text.obj) == text.obj.size(),
            "the model cannot be written");
    file.close();
    for (const std::string &broken :
         OrvTest::brokenPromises(file.fileName(), directory.filePath(QStringLiteral("fixed.obj"))))
        fail(broken);
    return 0;
}
