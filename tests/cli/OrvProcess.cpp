#include "cli/OrvProcess.h"

#include <gtest/gtest.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QProcess>

namespace OrvTest {

namespace {

OrvRun runProgram(const QString &program, const QStringList &arguments,
                  const QStringList &environment)
{
    constexpr int PatienceMs = 60 * 1000;
    QProcess process;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const QString &variable : environment)
        variables.insert(variable.section(QLatin1Char('='), 0, 0),
                         variable.section(QLatin1Char('='), 1));
    process.setProcessEnvironment(variables);
    process.start(program, arguments);
    OrvRun run;
    if (!process.waitForFinished(PatienceMs)) {
        ADD_FAILURE() << program.toStdString() << ' '
                      << arguments.join(QLatin1Char(' ')).toStdString() << ": "
                      << process.errorString().toStdString();
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    if (process.exitStatus() == QProcess::NormalExit)
        run.status = process.exitCode();
    return run;
}

} // namespace

QJsonObject OrvRun::json() const
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(out, &error);
    if (!document.isObject())
        ADD_FAILURE() << "not a JSON object: " << error.errorString().toStdString() << " at "
                      << error.offset << "\n"
                      << err.constData();
    return document.object();
}

QJsonValue valueAt(const QJsonValue &root, const char *path)
{
    QJsonValue value = root;
    for (const QString &step : QString::fromLatin1(path).split(QLatin1Char('.')))
        value = value.isArray() ? value.toArray().at(step.toInt()) : value.toObject().value(step);
    return value;
}

QString orvProgram()
{
    return QStringLiteral(ORV_PROGRAM);
}

OrvRun runOrv(const QStringList &arguments, const QStringList &environment)
{
    return runProgram(orvProgram(), arguments, environment);
}

OrvRun runOrvWithSmallFiles(const QStringList &arguments)
{
    // The signal that comes with the limit would end the program.
    return runOrvFromShell(QStringLiteral("ulimit -f 1; trap '' XFSZ; exec \"$0\" \"$@\""),
                           arguments);
}

OrvRun runOrvFromShell(const QString &script, const QStringList &arguments)
{
    return runProgram(QStringLiteral("sh"),
                      QStringList{QStringLiteral("-c"), script, orvProgram()} + arguments, {});
}

} // namespace OrvTest
