/// \file
/// The arguments of a subcommand: options and model files.
#pragma once

#include "ExitStatus.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace Halvard::Orv::Cli {

/// Prints "orv: MESSAGE" on stderr, in one line, as printedMessage() makes it.
void printError(const QString &message);

/// Prints `text`, as it is, on stdout. Says on stderr when it cannot be written.
ExitStatus printOut(const QString &text);

/// Every subcommand has --help, --verbose and --within beside its own options.
class CommandLine
{
public:
    /// \param subcommand as it is called.
    /// \param synopsis what follows it, for example "MODEL [options]".
    /// \param description a sentence or two.
    CommandLine(const QString &subcommand, const QString &synopsis, const QString &description);

    /// Takes more than one model. Without this call, a second one is an error.
    void allowSeveralModels() { _allowsSeveralModels = true; }
    void addOption(const QCommandLineOption &option);

    /// \param arguments those after the subcommand's name.
    /// \return nothing when there is work to do, else how the process ends: help
    ///         was asked for and printed, or the call was wrong and that was said.
    std::optional<ExitStatus> parse(const QStringList &arguments);

    QString model() const;
    /// All models, at least one.
    QStringList models() const;
    bool isSet(const QString &option) const;
    /// The last one given counts.
    QString value(const QString &option) const;

    /// Threads to work on, the calling one included.
    int threads() const { return _threads; }

    /// Says what is wrong with the call, and how it should look.
    ExitStatus wrongUsage(const QString &message) const;

private:
    QString usage() const;
    QString help() const;

    QString _subcommand;
    QString _synopsis;
    bool _allowsSeveralModels = false;
    QCommandLineParser _parser;
    int _threads = 1;
};

} // namespace Halvard::Orv::Cli
