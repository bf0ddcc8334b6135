/// \file
/// Which faces have which material.
#pragma once

#include "Scanning/OBJGeometry.h"

#include <QtCore/QMap>
#include <QtCore/QString>

namespace Halvard::Orv {

class MaterialLibraries;

/// Enters the faces of an OBJGeometry into its groups, a run at a time.
///
/// A face belongs to the group of the material that is selected when it is read, if that
/// material is known at that moment. Only a library makes materials known, so asking at
/// the begin of a run suffices.
class FaceGrouping
{
public:
    /// \param geometry without faces so far.
    /// \param material selected for the first faces.
    FaceGrouping(OBJGeometry &geometry, const MaterialLibraries &libraries,
                 const QString &material);

    /// Selects the material of the faces that follow.
    void select(const QString &material);
    /// Enters the faces read so far, and asks again whether the selected material is
    /// known.
    void startRun();

private:
    void openRun();
    void closeRun();
    void addUnknownRun();

    OBJGeometry &_geometry;
    const MaterialLibraries &_libraries;
    QString _material;
    bool _isKnown = false;
    FaceRun _run{};
    /// Ordered: a file can be made whose names collide in a hash table.
    QMap<QString, size_t> _groupNumbers;
    QMap<QString, size_t> _unknownNumbers;
};

} // namespace Halvard::Orv
