#include "CheckReport.h"
#include "CommandLine.h"
#include "Commands.h"
#include "OutputFile.h"
#include "Progress.h"
#include "WriteAll.h"

#include <QtCore/QFileInfo>
#include <QtCore/QIODevice>

#include <new>

namespace Halvard::Orv::Cli {

namespace {

/// Prints text or JSON on stdout.
/// \return false when it cannot be written, which is then said.
template <typename Write>
bool print(Write write)
{
    QString error;
    if (const auto out = OutputFile::open(QString(), error)) {
        write(out->device());
        if (out->commit(error))
            return true;
    }
    printError(error);
    return false;
}

/// Checks a model. Says why where it cannot be read.
bool check(const QString &fileName, ModelFindings &findings)
{
    const Progress progress(QStringLiteral("checking ") + QFileInfo(fileName).fileName());
    QString reason;
    try {
        if (checkModel(fileName, findings, reason) == CheckStatus::Done)
            return true;
    } catch (const std::bad_alloc &) {
        reason = QStringLiteral("there is not enough memory for it");
    }
    printError(QStringLiteral("Cannot check '%1': %2.").arg(printableText(fileName), reason));
    return false;
}

/// The number of --max; 0 without the option, and -1 for something else than a number.
int mostFindings(const CommandLine &line)
{
    if (!line.isSet(QStringLiteral("max")))
        return 0;
    bool ok = false;
    const int most = line.value(QStringLiteral("max")).toInt(&ok);
    return ok && most > 0 ? most : -1;
}

void addOptions(CommandLine &line)
{
    line.addOption({QStringLiteral("json"), QStringLiteral("Print JSON, for programs to read.")});
    line.addOption({QStringLiteral("strict"),
                    QStringLiteral("Give exit status 1 also where there is only a warning.")});
    line.addOption({QStringLiteral("max"),
                    QStringLiteral("Print at most N findings of a model, the most severe."),
                    QStringLiteral("N")});
}

} // namespace

ExitStatus checkCommand(const QStringList &arguments)
{
    CommandLine line(
        QStringLiteral("check"), QStringLiteral("MODEL... [options]"),
        QStringLiteral("Says what in the models, and in the material libraries that they name, "
                       "will not do what is expected: which faces are not drawn and why, and what "
                       "comes out other than it is written."));
    line.allowSeveralModels();
    addOptions(line);
    if (const auto status = line.parse(arguments))
        return *status;
    const int most = mostFindings(line);
    if (most < 0)
        return line.wrongUsage(QStringLiteral("'--max' takes a number of at least 1, not '%1'.")
                                   .arg(printableText(line.value(QStringLiteral("max")))));

    const bool asJSON = line.isSet(QStringLiteral("json"));
    const FindingSeverity worst =
        line.isSet(QStringLiteral("strict")) ? FindingSeverity::Warning : FindingSeverity::Error;
    ExitStatus status = Fine;
    QVector<ModelFindings> models;
    for (const QString &fileName : line.models()) {
        ModelFindings findings;
        if (!check(fileName, findings)) {
            status = CannotRun;
            continue;
        }
        if (findings.has(worst) && status == Fine)
            status = FileAtFault;
        if (asJSON) {
            models.append(findings);
        } else if (!print([&](QIODevice &out) {
                       writeAll(out, findingLines(findings, most).toLocal8Bit());
                   })) {
            return CannotRun;
        }
    }
    if (asJSON && !print([&](QIODevice &out) { writeFindings(out, models, most); }))
        return CannotRun;
    return status;
}

} // namespace Halvard::Orv::Cli
