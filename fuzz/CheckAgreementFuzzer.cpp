// A check of a text against what the loader prepares of it: the faces that it says are drawn, the
// triangles, the materials and the missing libraries are the loader's.
#include "support/Fuzzing.h"
#include "support/PreparedOBJ.h"

#include "OBJCheck.h"

#include <QtCore/QBuffer>
#include <QtCore/QSet>
#include <QtCore/QTextCodec>

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

ModelFindings check(QByteArray text, const QString &directory, unsigned choice)
{
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    Checking::TextLines::Limits limits;
    limits.chunkBytes = choice % 3 == 0 ? 4096 : 1 + choice / 3 % 97;
    CheckOptions options;
    options.decodeTextures = false;
    Checking::OBJCheck check(directory + QStringLiteral("/model.obj"), options);
    Checking::OBJLines lines(device, limits);
    while (lines.next())
        require(check.takeLine(lines), "a small text passes a limit");
    check.finish(lines);
    if (check.firstUnusedPosition() >= 0)
        check.tellUnused(1);
    return check.result();
}

/// What holds of any findings.
void checkAccounts(const ModelFindings &findings)
{
    qint64 lost = 0;
    QSet<QString> keys;
    const Finding *previous = nullptr;
    for (const Finding &finding : findings.findings) {
        lost += finding.faces;
        const QString key =
            finding.file + QChar::Null + finding.code + QChar::Null + finding.subject;
        require(!keys.contains(key), "a finding stands twice");
        keys.insert(key);
        require(finding.line >= 1 && finding.count >= 1 && finding.faces >= 0,
                "a finding without line or count");
        require(!finding.message.isEmpty() && !finding.consequence.isEmpty() &&
                    !finding.remedy.isEmpty(),
                "a finding without words");
        require(finding.faces == 0 || finding.severity == FindingSeverity::Error,
                "faces are lost without an error");
        require(!previous || previous->file != finding.file || previous->line <= finding.line,
                "findings are not sorted");
        previous = &finding;
    }
    require(findings.facesDrawn + lost == findings.faces, "the accounts do not balance");
    require((findings.facesDrawn == 0) == (findings.triangles == 0),
            "faces are drawn without triangles, or the other way round");
    require(findings.facesDrawn > 0 || findings.materials.isEmpty(),
            "materials without a face that is drawn");
}

bool isLibraryMissing(const ModelFindings &findings)
{
    for (const Finding &finding : findings.findings) {
        if (finding.code == QLatin1String("library-missing"))
            return true;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const ModelText text(asText(data, size));
    if (namesLibraryByPath(text.obj))
        return 0;
    const unsigned choice = choiceOf(text.obj);
    chooseCodec(choice);
    LibraryDirectory &libraries = LibraryDirectory::instance();
    libraries.write(text.mtl);

    const ModelFindings findings = check(text.obj, libraries.path(), choice);
    checkAccounts(findings);
    const PreparedOBJ loaded = prepareByLines(text.obj, libraries.path(), largeChunks());
    require(isLibraryMissing(findings) == (loaded.outcome == OBJScanOutcome::LibraryMissing),
            "a library is missing or not");
    const OrvTest::Bundle &bundle = loaded.prepared.bundle();
    require(findings.triangles == bundle.triangleCount(), "other triangles than the loader's");
    QStringList materials;
    for (const OrvTest::Command &command : bundle.commands) {
        if (command.count > 0)
            materials.append(command.material);
    }
    materials.sort();
    require(findings.materials == materials, "other materials than the loader's");
    return 0;
}
