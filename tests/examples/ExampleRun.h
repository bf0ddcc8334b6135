/// \file
/// Runs of the example that the test is about.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <ostream>

namespace OrvTest {

/// How a run ended, and what it printed.
struct ExampleRun
{
    int status = -1; ///< The exit status; -1 when it crashed, hung or could not be started.
    QByteArray out;
    QByteArray err;
};

bool operator==(const ExampleRun &first, const ExampleRun &second);
std::ostream &operator<<(std::ostream &stream, const ExampleRun &run);

/// Runs the example that the test was built for, or that ORV_EXAMPLE of the environment names.
/// \param input what the example can read from its standard input.
ExampleRun runExample(const QStringList &arguments, const QByteArray &input = {});

/// The path of a sample model.
QString samplePath(const char *name);

} // namespace OrvTest
