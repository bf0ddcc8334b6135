#include "Check/Repairs/RepairProperties.h"

#include <OrvCheck/ModelCheck.h>
#include <OrvCheck/ModelRepair.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <map>

namespace OrvTest {

namespace {

using namespace Halvard::Orv;

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
}

/// All files of a model's directory with their bytes.
std::map<QString, QByteArray> filesBeside(const QString &model)
{
    std::map<QString, QByteArray> files;
    const QDir directory = QFileInfo(model).dir();
    for (const QString &name : directory.entryList(QDir::Files))
        files[name] = contents(directory.filePath(name));
    return files;
}

ModelFindings findingsOf(const QString &model)
{
    ModelFindings findings;
    QString reason;
    CheckOptions options;
    options.decodeTextures = false;
    checkModel(model, findings, reason, options);
    return findings;
}

std::string described(const Finding &finding)
{
    return finding.code.toStdString() + " of '" + finding.subject.toStdString() + "' in line " +
           std::to_string(finding.line) + ": " + finding.message.toStdString();
}

bool isFixable(const Finding &finding)
{
    return finding.fixable;
}

/// Whether positions are mended: a face that was drawn with wrong ones may be none with the right
/// ones.
bool hasOtherPositions(const ModelFindings &findings)
{
    return std::any_of(
        findings.findings.cbegin(), findings.findings.cend(), [](const Finding &finding) {
            const bool isOfPositions = finding.subject == QLatin1String("v");
            return finding.code == QLatin1String("carriage-returns") ||
                   (isOfPositions && (finding.code == QLatin1String("attribute-begins-late") ||
                                      finding.code == QLatin1String("number-decimal-comma") ||
                                      finding.code == QLatin1String("line-continued")));
        });
}

class Promises
{
public:
    Promises(const QString &model, const QString &output) : _model(model), _output(output) {}

    std::vector<std::string> broken()
    {
        const auto inputs = filesBeside(_model);
        const ModelFindings before = findingsOf(_model);
        RepairResult result;
        if (!repair(_model, _output, result))
            return _broken;
        for (const auto &[name, bytes] : inputs)
            expect(contents(QFileInfo(_model).dir().filePath(name)) == bytes,
                   "the input " + name.toStdString() + " has changed");
        const bool isClean =
            std::none_of(before.findings.cbegin(), before.findings.cend(), isFixable);
        if (isClean)
            expect(contents(_output) == contents(_model), "a clean model comes out otherwise");
        const ModelFindings after = findingsOf(_output);
        for (const Finding &finding : after.findings)
            expect(!finding.fixable, "fixable is left: " + described(finding));
        expect(after.facesDrawn >= before.facesDrawn || hasOtherPositions(before),
               "faces drawn before: " + std::to_string(before.facesDrawn) +
                   ", after: " + std::to_string(after.facesDrawn));
        expect(after.faces >= before.faces, "faces are gone");
        expectRest();
        return _broken;
    }

private:
    void expect(bool isTrue, const std::string &otherwise)
    {
        if (!isTrue)
            _broken.push_back(otherwise);
    }

    bool repair(const QString &from, const QString &to, RepairResult &result)
    {
        QString reason;
        const RepairStatus status = repairModel(from, to, result, reason);
        expect(status == RepairStatus::Done, "not repaired: " + reason.toStdString());
        return status == RepairStatus::Done;
    }

    /// Another repair finds nothing.
    void expectRest()
    {
        const QString again = QFileInfo(_output).dir().filePath(QStringLiteral("again.obj"));
        RepairResult result;
        if (!repair(_output, again, result))
            return;
        expect(contents(again) == contents(_output), "a second repair changes something");
        for (const RepairChange &change : result.changes)
            _broken.push_back("a second repair tells of " + change.code.toStdString() + ": " +
                              change.message.toStdString());
        QFile::remove(again);
    }

    const QString _model;
    const QString _output;
    std::vector<std::string> _broken;
};

} // namespace

std::vector<std::string> brokenPromises(const QString &model, const QString &output)
{
    return Promises(model, output).broken();
}

} // namespace OrvTest
