#include "support/TemporaryModel.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace OrvTest {

TemporaryModel::TemporaryModel()
{
    if (!_directory.isValid())
        ADD_FAILURE() << "no temporary directory: " << _directory.errorString().toStdString();
}

QString TemporaryModel::directory() const
{
    return _directory.path();
}

QString TemporaryModel::path(const QString &name) const
{
    return _directory.path() + QLatin1Char('/') + name;
}

QString TemporaryModel::write(const QString &name, const QByteArray &contents) const
{
    const QString fileName = path(name);
    QDir().mkpath(QFileInfo(fileName).path());
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        ADD_FAILURE() << "cannot write " << fileName.toStdString();
    return fileName;
}

} // namespace OrvTest
