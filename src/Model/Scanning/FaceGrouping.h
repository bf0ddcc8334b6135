/// \file
/// Which faces have which material.
#pragma once

#include "Scanning/OBJGeometry.h"

#include <QtCore/QHash>
#include <QtCore/QString>

namespace Halvard::Orv {

class ModelBuilder;

/// Enters the faces of an OBJGeometry into its groups, a run at a time.
///
/// A face belongs to the group of the material that is selected when it is read,
/// if the builder has that group at that moment. The groups that the builder has
/// change with its libraries only, so that looking at the begin of a run suffices.
class FaceGrouping
{
public:
    /// \param geometry without faces so far.
    /// \param material selected for the first faces.
    FaceGrouping(OBJGeometry &geometry, const ModelBuilder &builder, const QString &material);

    /// Selects the material of the faces that follow.
    void select(const QString &material);
    /// Enters the faces read so far, and looks for the selected material's group
    /// again.
    void startRun();

private:
    void openRun();
    void closeRun();

    OBJGeometry &_geometry;
    const ModelBuilder &_builder;
    QString _material;
    bool _hasGroup = false;
    FaceRun _run{};
    QHash<QString, size_t> _groupNumbers;
};

} // namespace Halvard::Orv
