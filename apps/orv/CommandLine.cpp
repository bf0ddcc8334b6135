#include "CommandLine.h"

#include "Confinement.h"
#include "Messages.h"
#include "OutputFile.h"
#include "PrintedText.h"
#include "WriteAll.h"

#include <QtCore/QThread>

#include <cstdio>

namespace Halvard::Orv::Cli {

namespace {

void print(std::FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

} // namespace

void printError(const QString &message)
{
    print(stderr, QStringLiteral("orv: ") + printedMessage(message) + QLatin1Char('\n'));
}

ExitStatus printOut(const QString &text)
{
    return OutputFile::write(QString(),
                             [&text](QIODevice &device) { writeAll(device, text.toLocal8Bit()); });
}

CommandLine::CommandLine(const QString &subcommand, const QString &synopsis,
                         const QString &description)
    : _subcommand(subcommand), _synopsis(synopsis)
{
    _parser.setApplicationDescription(description);
    _parser.addPositionalArgument(QStringLiteral("MODEL"),
                                  QStringLiteral("The Wavefront OBJ file; '-' is standard input."));
    _parser.addOption({{QStringLiteral("h"), QStringLiteral("help")},
                       QStringLiteral("Print this help and stop.")});
    _parser.addOption({QStringLiteral("verbose"),
                       QStringLiteral("Print the library's debug messages on stderr as well.")});
    _parser.addOption({QStringLiteral("within"),
                       QStringLiteral("Read no file outside DIR, wherever links lead, and print "
                                      "paths relative to it."),
                       QStringLiteral("DIR")});
    _parser.addOption({QStringLiteral("threads"),
                       QStringLiteral("Prepare models on N threads; all cores when not given."),
                       QStringLiteral("N")});
}

void CommandLine::addOption(const QCommandLineOption &option)
{
    _parser.addOption(option);
}

std::optional<ExitStatus> CommandLine::parse(const QStringList &arguments)
{
    // The parser takes the first argument for the program's name.
    const bool isParsed = _parser.parse(QStringList(_subcommand) + arguments);
    if (_parser.isSet(QStringLiteral("help")))
        return printOut(help());
    if (!isParsed)
        return wrongUsage(_parser.errorText());
    const QStringList files = _parser.positionalArguments();
    if (files.isEmpty() || files.contains(QString()))
        return wrongUsage(QStringLiteral("No model file is given."));
    if (files.size() > 1 && !_allowsSeveralModels)
        return wrongUsage(QStringLiteral("Unexpected argument '%1'.").arg(files[1]));
    Messages::setVerbose(_parser.isSet(QStringLiteral("verbose")));
    const QString within = _parser.value(QStringLiteral("within"));
    if (_parser.isSet(QStringLiteral("within")) && !Confinement::setDirectory(within))
        return wrongUsage(QStringLiteral("There is no directory '%1'.").arg(within));
    _threads = QThread::idealThreadCount();
    if (_parser.isSet(QStringLiteral("threads"))) {
        constexpr int MostThreads = 256;
        const QString given = _parser.value(QStringLiteral("threads"));
        bool isNumber = false;
        _threads = given.toInt(&isNumber);
        if (!isNumber || _threads < 1 || _threads > MostThreads)
            return wrongUsage(QStringLiteral("'%1' is no number of threads from 1 to %2.")
                                  .arg(given)
                                  .arg(MostThreads));
    }
    return {};
}

QString CommandLine::model() const
{
    return _parser.positionalArguments().constFirst();
}

QStringList CommandLine::models() const
{
    return _parser.positionalArguments();
}

bool CommandLine::isSet(const QString &option) const
{
    return _parser.isSet(option);
}

QString CommandLine::value(const QString &option) const
{
    return _parser.value(option);
}

ExitStatus CommandLine::wrongUsage(const QString &message) const
{
    printError(message);
    print(stderr, usage() + QStringLiteral("Try 'orv %1 --help'.\n").arg(_subcommand));
    return CannotRun;
}

QString CommandLine::usage() const
{
    return QStringLiteral("Usage: orv %1 %2\n").arg(_subcommand, _synopsis);
}

QString CommandLine::help() const
{
    // The parser's own usage line knows nothing of subcommands.
    const QString text = _parser.helpText();
    return usage() + text.mid(text.indexOf(QLatin1Char('\n')) + 1);
}

} // namespace Halvard::Orv::Cli
