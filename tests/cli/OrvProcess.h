/// \file
/// Runs of the real command line.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace OrvTest {

struct OrvRun
{
    /// The exit status; -1 when the program crashed, hung or could not be started.
    int status = -1;
    QByteArray out;
    QByteArray err;

    /// stdout as a JSON object. Fails the test, and is empty, when it is none.
    QJsonObject json() const;
};

/// The value at a path of member names and array positions: "bundles.0.key".
/// Undefined when there is none.
QJsonValue valueAt(const QJsonValue &root, const char *path);

/// Runs `orv` to its end.
/// \param environment additions of the form "NAME=value".
OrvRun runOrv(const QStringList &arguments, const QStringList &environment = {});

/// Runs `orv` where files can have no more than 512 bytes, as on a disk that is about
/// to be full.
OrvRun runOrvWithSmallFiles(const QStringList &arguments);

/// Runs a shell script, in which "$0" is the program, and "$@" are the arguments.
OrvRun runOrvFromShell(const QString &script, const QStringList &arguments = {});

/// Where the program lies.
QString orvProgram();

} // namespace OrvTest
