/// \file
/// What the libraries say through Qt's message logger, as this program prints it.
#pragma once

namespace Halvard::Orv::Cli {

/// Takes over Qt's message logger while it lives. One at a time.
///
/// Warnings and errors are held back and printed on stderr by flush(), each text
/// once, as printedMessage() makes it, in order of first appearance, with how often it came: a
/// model of a thousand bad faces would otherwise bury everything else. Debug messages are printed
/// at once, and only when verbose. Messages may come from any thread.
class Messages
{
public:
    Messages();
    /// Flushes.
    ~Messages();
    Messages(const Messages &) = delete;
    Messages &operator=(const Messages &) = delete;

    static void setVerbose(bool isVerbose);
    static bool isVerbose();

    /// Prints what is held back and forgets it.
    static void flush();
};

} // namespace Halvard::Orv::Cli
