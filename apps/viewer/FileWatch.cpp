#include "FileWatch.h"

#include <QtCore/QFileInfo>

#include <set>

namespace Halvard::Orv::Viewer {

namespace {

constexpr int LookEvery = 60;       // milliseconds, after something has happened
constexpr qint64 QuietFor = 200;    // of a file that may be whole
constexpr qint64 SuspectFor = 2000; // of one that ends in the middle
constexpr int TryAgainAfter = 1000;

} // namespace

FileWatch::FileWatch(QObject *parent) : QObject(parent)
{
    _timer.setInterval(LookEvery);
    connect(&_timer, &QTimer::timeout, this, &FileWatch::look);
    const auto begin = [this] {
        if (!_timer.isActive())
            _quiet.start();
        _timer.start();
    };
    connect(&_watcher, &QFileSystemWatcher::fileChanged, this, begin);
    connect(&_watcher, &QFileSystemWatcher::directoryChanged, this, begin);
}

void FileWatch::watch(const QString &model, const FileStamps &stamps)
{
    _model = model;
    _read = _latest = stamps;
    _triesAgain = false;
    follow();
    _quiet.start();
    _timer.start();
}

void FileWatch::tryAgain()
{
    _triesAgain = true;
    _quiet.start();
    _timer.start();
}

/// Files that programs replace lose their watch; that of the folder sees the new one.
void FileWatch::follow()
{
    std::set<QString> wanted;
    for (auto it = _read.begin(); it != _read.end() && int(wanted.size()) < 2 * MostFiles; ++it) {
        const QString folder = QFileInfo(it.key()).path();
        if (QFileInfo::exists(it.key()))
            wanted.insert(it.key());
        if (QFileInfo::exists(folder))
            wanted.insert(folder);
    }
    QStringList gone;
    for (const QString &path : _watcher.files() + _watcher.directories()) {
        if (wanted.erase(path) == 0)
            gone += path;
    }
    if (!gone.isEmpty())
        _watcher.removePaths(gone);
    for (const QString &path : wanted)
        _watcher.addPath(path);
}

void FileWatch::look()
{
    const FileStamps now = stampsOf(_read.keys());
    if (now != _latest) {
        _latest = now;
        _quiet.start();
        return;
    }
    const bool isNew = now != _read;
    if ((!isNew && !_triesAgain) || !now.value(_model).exists()) {
        if (_quiet.elapsed() > QuietFor)
            _timer.stop();
        follow();
        return;
    }
    const qint64 wait = endsInTheMiddle(_model) ? SuspectFor : isNew ? QuietFor : TryAgainAfter;
    if (_quiet.elapsed() < wait)
        return;
    _timer.stop();
    _read = now;
    _triesAgain = false;
    follow();
    emit changed();
}

} // namespace Halvard::Orv::Viewer
