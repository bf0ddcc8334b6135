// Checks models in a build or before a commit:  lint [--accept CODE]... MODEL.obj...
//
// Prints a line for each finding, as compilers do. The exit status is 0 where all is well, 1 where
// a finding is an error or a warning that is not accepted, 2 where a model cannot be checked.
#include <OrvCheck/ModelCheck.h>
#include <QtCore/QFile>
#include <QtCore/QSet>
#include <QtCore/QTextStream>
#include <algorithm>

using namespace Halvard::Orv;

enum Result
{
    Clean,
    Faulty,
    NotChecked
};

// Names in findings are as they stand in the files, which may hold anything: printableText()
// keeps them from writing over the terminal.
void print(QTextStream &out, const Finding &finding)
{
    out << printableText(finding.file) << ':' << finding.line << ": "
        << severityName(finding.severity) << ": " << printableText(finding.message) << " ["
        << finding.code << "]\n";
    if (finding.severity != FindingSeverity::Hint)
        out << "    " << printableText(finding.consequence) << '\n'
            << "    " << printableText(finding.remedy) << '\n';
}

Result lint(const QString &model, const QSet<QString> &accepted, QTextStream &out)
{
    ModelFindings findings;
    QString reason;
    if (checkModel(model, findings, reason) != CheckStatus::Done) {
        out << printableText(model) << ": " << reason << '\n';
        return NotChecked;
    }
    Result result = Clean;
    for (const Finding &finding : findings.findings) {
        if (accepted.contains(finding.code))
            continue;
        print(out, finding);
        if (finding.severity != FindingSeverity::Hint)
            result = Faulty;
    }
    out << printableText(model) << ": " << findings.facesDrawn << " of " << findings.faces
        << " faces are drawn, as " << findings.triangles << " triangles\n";
    return result;
}

int main(int count, char **arguments)
{
    QTextStream out(stdout);
    QSet<QString> accepted;
    int next = 1;
    for (; next + 1 < count && qstrcmp(arguments[next], "--accept") == 0; next += 2)
        accepted.insert(QString::fromLocal8Bit(arguments[next + 1]));
    if (next >= count) {
        out << "Usage: lint [--accept CODE]... MODEL.obj...\n";
        return NotChecked;
    }
    Result worst = Clean;
    for (; next < count; ++next)
        worst = std::max(worst, lint(QFile::decodeName(arguments[next]), accepted, out));
    return worst;
}
