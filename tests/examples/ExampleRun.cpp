#include "ExampleRun.h"

#include <QtCore/QProcess>

namespace OrvTest {

bool operator==(const ExampleRun &first, const ExampleRun &second)
{
    return first.status == second.status && first.out == second.out && first.err == second.err;
}

std::ostream &operator<<(std::ostream &stream, const ExampleRun &run)
{
    return stream << "status " << run.status << "\nstdout:\n"
                  << run.out.constData() << "\nstderr:\n"
                  << run.err.constData();
}

ExampleRun runExample(const QStringList &arguments, const QByteArray &input)
{
    constexpr int PatienceMs = 60 * 1000;
    QProcess process;
    process.start(qEnvironmentVariable("ORV_EXAMPLE", QStringLiteral(ORV_EXAMPLE)), arguments);
    process.write(input);
    process.closeWriteChannel();
    ExampleRun run;
    if (!process.waitForFinished(PatienceMs)) {
        run.err = process.errorString().toLocal8Bit();
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

QString samplePath(const char *name)
{
    return QStringLiteral(ORV_SAMPLES_DIR "/") + QLatin1String(name);
}

} // namespace OrvTest
