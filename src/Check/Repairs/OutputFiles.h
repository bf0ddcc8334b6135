/// \file
/// Several files that appear together or not at all.
#pragma once

#include <QtCore/QSaveFile>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <vector>

namespace Halvard::Orv::Checking {

/// Whether two paths lead to one file, by whatever names and links. False where one is missing.
bool isSameFile(const QString &a, const QString &b);

/// Why a file cannot be written, as far as can be told without trying; empty where nothing stands
/// against it.
QString obstacleTo(const QString &path);

class OutputFiles
{
public:
    /// Opens a file that commit() brings about.
    /// \return null when it cannot be opened; reason() then says why.
    QSaveFile *open(const QString &path);

    /// Brings all files about, the last one opened first. Where one cannot be, those that came
    /// before it and were not there at first are taken away again.
    /// \return whether all are there.
    bool commit();

    /// What went wrong.
    const QString &reason() const { return _reason; }
    /// Notes that a file that is open could not be written.
    void fail(const QSaveFile &file);

private:
    std::vector<std::unique_ptr<QSaveFile>> _files;
    QString _reason;
};

} // namespace Halvard::Orv::Checking
