#include "RecentFiles.h"

#include <QtCore/QFileInfo>
#include <QtCore/QSettings>

namespace Halvard::Orv::Viewer {

namespace {

constexpr int Most = 10;

QString key()
{
    return QStringLiteral("recentFiles");
}

} // namespace

RecentFiles::RecentFiles(QSettings &settings, QWidget *parent)
    : QMenu(tr("Open &Recent"), parent), _settings(settings)
{
    setToolTipsVisible(true);
    fill();
}

void RecentFiles::add(const QString &path)
{
    QStringList all = paths();
    all.removeAll(path);
    all.prepend(path);
    _settings.setValue(key(), QStringList(all.mid(0, Most)));
    fill();
}

QStringList RecentFiles::paths() const
{
    return _settings.value(key()).toStringList();
}

void RecentFiles::fill()
{
    clear();
    for (const QString &path : paths()) {
        QString name = QFileInfo(path).fileName();
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction *const action = addAction(name, this, [this, path] { emit chosen(path); });
        action->setToolTip(path);
    }
    addSeparator();
    addAction(tr("&Forget These"), this, [this] {
        _settings.remove(key());
        fill();
    });
    setEnabled(!paths().isEmpty());
}

} // namespace Halvard::Orv::Viewer
