/// \file
/// The models that were opened last.
#pragma once

#include <QtCore/QStringList>
#include <QtWidgets/QMenu>

class QSettings;

namespace Halvard::Orv::Viewer {

/// A menu of them, remembered in the settings.
class RecentFiles : public QMenu
{
    Q_OBJECT

public:
    /// \param settings outlives the menu.
    RecentFiles(QSettings &settings, QWidget *parent);

    /// Puts a file first.
    void add(const QString &path);
    /// The last one first.
    QStringList paths() const;

signals:
    void chosen(const QString &path);

private:
    void fill();

    QSettings &_settings;
};

} // namespace Halvard::Orv::Viewer
