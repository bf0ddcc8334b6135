/// \file
/// What tests of files that are trouble as files have in common.
#pragma once

#include "support/BothPaths.h"
#include "support/GLTest.h"
#include "support/TemporaryModel.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <string>

namespace OrvTest {

inline const QByteArray Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

/// The warning of a file that is a pipe, a socket or a device.
inline std::string warningOfKind(const QString &fileName)
{
    return "'" + fileName.toStdString() +
           "' is not read: it is a pipe, a socket or a device; copy what it gives into a regular "
           "file";
}

inline QString objFailure(const QString &fileName)
{
    return QStringLiteral("Failed to load OBJ file '%1'").arg(fileName);
}

inline QString mtlFailure(const QString &fileName)
{
    return QStringLiteral("Failed to load MTL file '%1'").arg(fileName);
}

/// A model of its own for each test.
class TroublesomeFiles : public GLTest
{
protected:
    QString model(const QByteArray &text) const
    {
        return files.write(QStringLiteral("model.obj"), text);
    }

    TemporaryModel files;
};

} // namespace OrvTest
