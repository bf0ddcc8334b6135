/// \file
/// Notices that the files of a model have changed.
#pragma once

#include "FileStamp.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QObject>
#include <QtCore/QTimer>

namespace Halvard::Orv::Viewer {

/// Waits for a save to end: says so once the files have been left alone for a moment. For a longer
/// one where the model ends in the middle of a line, or is empty.
class FileWatch : public QObject
{
    Q_OBJECT

public:
    explicit FileWatch(QObject *parent = nullptr);

    /// Watches these files and no others from now on, and looks at once whether they are as they
    /// were when they were read.
    /// \param model the one among them that must exist, and must end in a line.
    void watch(const QString &model, const FileStamps &stamps);

    /// Looks again in a while, though nothing changes.
    void tryAgain();

signals:
    void changed();

private:
    void follow();
    void look();

    /// Most that are watched, for each takes a handle of the system.
    static constexpr int MostFiles = 500;

    QString _model;
    FileStamps _read;   // as they were read
    FileStamps _latest; // as they were when looked at last
    QElapsedTimer _quiet;
    QFileSystemWatcher _watcher;
    QTimer _timer;
    bool _triesAgain = false;
};

} // namespace Halvard::Orv::Viewer
