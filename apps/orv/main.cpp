#include "CommandLine.h"
#include "Commands.h"
#include "Interruption.h"
#include "Messages.h"
#include "StandardStreams.h"

#include <OrvModel/ModelVersions.h>
#include <common/FileNames.h>

#include <QtCore/QCoreApplication>

#include <cstdio>
#include <new>

using namespace Halvard::Orv;

namespace {

struct Subcommand
{
    const char *name;
    const char *summary;
    Cli::ExitStatus (*run)(const QStringList &arguments);
};

constexpr Subcommand Subcommands[] = {
    {"render", "draw the model into an image file", Cli::renderCommand},
    {"info", "say what is in the model", Cli::infoCommand},
    {"dump", "print the model as it lies on the GPU, as JSON", Cli::dumpCommand},
    {"check", "say what in the model will not do what is expected", Cli::checkCommand},
    {"fix", "write a model that does what the author of this one meant", Cli::fixCommand},
};

QString usage()
{
    return QStringLiteral("Usage: orv SUBCOMMAND MODEL [options]\n");
}

QString help()
{
    QString text = usage();
    text += QStringLiteral("Loads Wavefront OBJ models.\n\nSubcommands:\n");
    for (const Subcommand &subcommand : Subcommands)
        text += QStringLiteral("  %1  %2\n")
                    .arg(QLatin1String(subcommand.name), -8)
                    .arg(QLatin1String(subcommand.summary));
    text += QStringLiteral("\nOptions:\n"
                           "  -h, --help     Print this help and stop.\n"
                           "  -v, --version  Print the version and stop.\n"
                           "\n"
                           "'orv SUBCOMMAND --help' lists a subcommand's options.\n"
                           "Exit status: 0 fine, 1 the file is at fault, 2 wrong usage or no "
                           "OpenGL,\n3 not enough memory, 130 interrupted.\n");
    return text;
}

Cli::ExitStatus wrongUsage(const QString &message)
{
    Cli::printError(message);
    std::fputs(qPrintable(usage() + QStringLiteral("Try 'orv --help'.\n")), stderr);
    return Cli::CannotRun;
}

Cli::ExitStatus run(const QStringList &arguments)
{
    if (arguments.size() < 2)
        return wrongUsage(QStringLiteral("No subcommand is given."));
    const QString &first = arguments[1];
    if (first == QLatin1String("-h") || first == QLatin1String("--help"))
        return Cli::printOut(help());
    if (first == QLatin1String("-v") || first == QLatin1String("--version"))
        return Cli::printOut(QStringLiteral("orv %1\n").arg(ModelVersions::getVersion()));
    for (const Subcommand &subcommand : Subcommands) {
        if (first == QLatin1String(subcommand.name))
            return subcommand.run(arguments.mid(2));
    }
    return wrongUsage(first.startsWith(QLatin1Char('-'))
                          ? QStringLiteral("Unknown option '%1'.").arg(first)
                          : QStringLiteral("Unknown subcommand '%1'.").arg(first));
}

} // namespace

int main(int argc, char *argv[])
{
    Cli::holdStandardStreams();
    Cli::endOnInterruption();
    const QCoreApplication application(argc, argv);
    const Cli::Messages messages;
    try {
        return run(Apps::argumentsOf(argc, argv));
    } catch (const std::bad_alloc &) {
        Cli::Messages::flush();
        std::fputs("orv: There is not enough memory.\n", stderr);
        return Cli::OutOfMemory;
    }
}
