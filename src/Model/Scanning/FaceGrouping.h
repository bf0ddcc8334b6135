/// \file
/// Which faces have which material.
#pragma once

#include "Scanning/OBJGeometry.h"

#include <QtCore/QMap>
#include <QtCore/QString>

#include <vector>

namespace Halvard::Orv {

class MaterialLibraries;

/// Enters faces into their groups, a run at a time.
///
/// A face belongs to the group of the material that is selected when it is read, if that
/// material is known at that moment. Only a library makes materials known, so asking at
/// the begin of a run suffices.
class FaceGrouping
{
public:
    /// \param geometry its groups, which are empty, receive the faces.
    /// \param material selected for the first faces.
    FaceGrouping(OBJGeometry &geometry, const MaterialLibraries &libraries,
                 const QString &material);

    /// Selects the material of the faces that follow.
    /// \param end of the faces read so far.
    void select(const QString &material, const FacePlace &end);
    /// Enters the faces read so far, and asks again whether the selected material is
    /// known.
    void startRun(const FacePlace &end);

private:
    void openRun(const FacePlace &begin);
    void closeRun(const FacePlace &end);
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
