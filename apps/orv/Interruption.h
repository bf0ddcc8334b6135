/// \file
/// Ctrl-C, and being told to end.
#pragma once

class QFileDevice;

namespace Halvard::Orv::Cli {

/// From now on SIGINT and SIGTERM end the process at once with the exit status that shells give
/// them, 130 and 143, and take an unfinished output file and the progress bar away.
void endOnInterruption();

/// Names the unfinished file that an interruption removes, while the object lives. One at a time.
class UnfinishedFile
{
public:
    /// \param file open for writing, under whatever name it has until it is finished.
    explicit UnfinishedFile(const QFileDevice &file);
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile &) = delete;
    UnfinishedFile &operator=(const UnfinishedFile &) = delete;
};

} // namespace Halvard::Orv::Cli
