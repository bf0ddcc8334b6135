#include <OrvCheck/ModelCheck.h>

#include "OBJCheck.h"

#include <Lanes/FloatingPointState.h>
#include <Libraries/InputFile.h>

#include <QtCore/QFile>

#include <algorithm>

namespace Halvard::Orv {

namespace {

using namespace Checking;

/// Bytes between two calls of the progress function.
constexpr qint64 ProgressBytes = qint64(1) << 20;

class Progress
{
public:
    Progress(const CheckOptions &options, qint64 fileBytes)
        : _options(options), _fileBytes(std::max<qint64>(fileBytes, 1))
    {}

    /// \return false when the work is to stop.
    bool reach(qint64 bytes)
    {
        if (!_options.progress || bytes < _next)
            return true;
        _next = bytes + ProgressBytes;
        return _options.progress(std::min(1.0, double(bytes) / double(_fileBytes)));
    }

private:
    const CheckOptions &_options;
    const qint64 _fileBytes;
    qint64 _next = 0;
};

/// Line of a position, looked for in a file that is read again up to it. 0 where the file is
/// not what it was.
qint64 lineOfPosition(const QString &fileName, qint64 position)
{
    QFile file(fileName);
    if (!openInputFile(file))
        return 0;
    OBJLines lines(file);
    while (lines.next()) {
        if (lines.kind() == OBJLineKind::Position && lines.positions() > position)
            return lines.line().number;
    }
    return 0;
}

} // namespace

CheckStatus checkModel(const QString &fileName, ModelFindings &result, QString &reason,
                       const CheckOptions &options)
{
    const FloatingPointState state;
    QFile file(fileName);
    if (!openInputFile(file, &reason))
        return CheckStatus::Unreadable;
    OBJCheck check(fileName, options);
    Progress progress(options, file.size());
    OBJLines lines(file);
    bool hasRoom = true;
    while (hasRoom && lines.next()) {
        hasRoom = check.takeLine(lines);
        if (!progress.reach(lines.text().bytesRead()))
            return CheckStatus::Stopped;
    }
    if (lines.text().lineTooLong())
        check.takeTooLongLine(lines.line().number + 1);
    check.finish(lines);
    if (check.firstUnusedPosition() >= 0)
        check.tellUnused(
            std::max<qint64>(lineOfPosition(fileName, check.firstUnusedPosition()), 1));
    result = check.result();
    return CheckStatus::Done;
}

QString severityName(FindingSeverity severity)
{
    switch (severity) {
    case FindingSeverity::Error:
        return QStringLiteral("error");
    case FindingSeverity::Warning:
        return QStringLiteral("warning");
    case FindingSeverity::Hint:
        break;
    }
    return QStringLiteral("hint");
}

bool ModelFindings::has(FindingSeverity severity) const
{
    return std::any_of(findings.cbegin(), findings.cend(), [severity](const Finding &finding) {
        return finding.severity <= severity; // the most severe comes first
    });
}

} // namespace Halvard::Orv
