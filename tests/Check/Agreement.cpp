#include "Check/Agreement.h"

#include "reference/FaceTriangles.h"
#include "reference/FileReading.h"
#include "reference/Welding.h"
#include "support/MessageCapture.h"
#include "support/ModelReadBack.h"

#include <OrvCheck/ModelCheck.h>

#include <QtCore/QSet>

#include <sstream>

namespace OrvTest {

namespace {

using namespace Halvard::Orv;

/// What becomes of the faces of a file.
struct FaceCounts
{
    bool isLoaded = false;
    qint64 read = 0;
    qint64 drawn = 0;
};

bool hasEmptyAttribute(const PlainModel &model)
{
    for (const auto &[name, attribute] : model.attributes) {
        if (attribute.values.empty() || attribute.indices.empty())
            return true;
    }
    return false;
}

FaceCounts countFaces(const QString &fileName)
{
    const MessageCapture capture; // of faces that cannot be cut
    FaceCounts counts;
    PlainModel model;
    QString error;
    counts.isLoaded = OrvReference::readOBJFile(fileName, model, error);
    counts.read = static_cast<qint64>(model.cornerCounts.size());
    const QString positions = QStringLiteral("va_Vertex");
    if (!counts.isLoaded || counts.read == 0 || model.attributes.count(positions) == 0 ||
        hasEmptyAttribute(model))
        return counts;
    const OrvReference::WeldedModel welded = OrvReference::weld(model);
    std::vector<size_t> firstCorners;
    size_t corner = 0;
    for (const quint32 count : model.cornerCounts) {
        firstCorners.push_back(corner);
        corner += count;
    }
    for (const PlainGroup &group : model.groups) {
        for (const quint32 face : group.faces) {
            const auto first =
                welded.indices.begin() + static_cast<std::ptrdiff_t>(firstCorners[face]);
            const std::vector<quint32> ring(
                first, first + static_cast<std::ptrdiff_t>(model.cornerCounts[face]));
            counts.drawn +=
                OrvReference::triangulateFace(ring, welded.values.at(positions)).empty() ? 0 : 1;
        }
    }
    return counts;
}

class Comparison
{
public:
    template <typename Value>
    void expectSame(const char *what, const Value &checked, const Value &loaded)
    {
        if (checked == loaded)
            return;
        std::ostringstream text;
        text << what << ": the check says " << checked << ", the loader " << loaded;
        _differences.push_back(text.str());
    }

    void expect(bool isTrue, const std::string &otherwise)
    {
        if (!isTrue)
            _differences.push_back(otherwise);
    }

    const std::vector<std::string> &differences() const { return _differences; }

private:
    std::vector<std::string> _differences;
};

/// Faces that the loader drops while it reads.
qint64 unreadableFaces(const ModelFindings &findings)
{
    qint64 faces = 0;
    for (const Finding &finding : findings.findings) {
        if (finding.code == QLatin1String("face-unreadable") ||
            (finding.code == QLatin1String("line-continued") &&
             finding.subject == QLatin1String("f")))
            faces += finding.count;
    }
    return faces;
}

bool hasCode(const ModelFindings &findings, const char *code)
{
    for (const Finding &finding : findings.findings) {
        if (finding.code == QLatin1String(code))
            return true;
    }
    return false;
}

/// What must hold of any findings, whatever the model.
void compareAccounts(const ModelFindings &findings, Comparison &comparison)
{
    qint64 lost = 0;
    QSet<QString> keys;
    for (const Finding &finding : findings.findings) {
        const std::string code = finding.code.toStdString();
        lost += finding.faces;
        const QString key =
            finding.file + QChar::Null + finding.code + QChar::Null + finding.subject;
        comparison.expect(!keys.contains(key), code + " stands twice");
        keys.insert(key);
        comparison.expect(finding.line >= 1, code + " has no line");
        comparison.expect(finding.count >= 1, code + " has no occurrence");
        comparison.expect(!finding.message.isEmpty() && !finding.consequence.isEmpty() &&
                              !finding.remedy.isEmpty(),
                          code + " lacks a sentence");
        comparison.expect(finding.faces == 0 || finding.severity == FindingSeverity::Error,
                          code + " loses faces and is no error");
    }
    comparison.expectSame("drawn and lost faces", findings.facesDrawn + lost, findings.faces);
    comparison.expect((findings.facesDrawn == 0) == (findings.triangles == 0),
                      "faces without triangles, or the other way round");
}

QStringList drawnMaterials(const UploadedModel &model)
{
    QStringList names;
    for (const Bundle &bundle : model.bundles) {
        for (const Command &command : bundle.commands) {
            if (command.count > 0)
                names.append(command.material);
        }
    }
    names.sort();
    return names;
}

} // namespace

std::vector<std::string> disagreements(const QString &fileName)
{
    Comparison comparison;
    ModelFindings findings;
    QString reason;
    const CheckStatus status = checkModel(fileName, findings, reason);
    const UploadedModel loaded = loadWithLibrary(fileName);
    if (status != CheckStatus::Done) {
        comparison.expect(loaded.isNull, "the check cannot read what the loader can");
        return comparison.differences();
    }
    compareAccounts(findings, comparison);

    const FaceCounts faces = countFaces(fileName);
    qint64 indices = 0;
    for (const Bundle &bundle : loaded.bundles)
        indices += static_cast<qint64>(bundle.indices.size());
    comparison.expectSame("a missing library", hasCode(findings, "library-missing"), loaded.isNull);
    comparison.expectSame("triangles", findings.triangles, indices / 3);
    comparison.expectSame("faces drawn", findings.facesDrawn, faces.drawn);
    if (faces.isLoaded)
        comparison.expectSame("faces read", findings.faces - unreadableFaces(findings), faces.read);
    comparison.expectSame("materials", findings.materials.join(QLatin1Char('\n')).toStdString(),
                          drawnMaterials(loaded).join(QLatin1Char('\n')).toStdString());
    return comparison.differences();
}

} // namespace OrvTest
