/// \file
/// What preparing a model found, and where its time went.
#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtCore/QtGlobal>

namespace Halvard::Orv {

/// \addtogroup prepare
/// @{

/// Plain numbers; zero or empty where a model was not made from a file.
struct PreparationReport
{
    /// Why a face gives no triangle.
    enum class Reason
    {
        MaterialNotDefined, ///< its material is in no library; `subject` is the name
        TooFewCorners,      ///< it has fewer than three
        NotTriangulated,    ///< it crosses itself or is degenerate
        NothingIsDrawn      ///< the whole file is not drawn, for example for want of positions
    };

    /// Faces that are not drawn for one reason and subject.
    struct FacesNotDrawn
    {
        Reason reason;     ///< why
        QString subject;   ///< a material's name; else empty
        quint64 firstFace; ///< the first of them, counted from 0 in the order of the file
        quint64 count;     ///< how many
    };

    /// Nanoseconds of wall time.
    struct Stages
    {
        qint64 read = 0;        ///< the text, and the material libraries
        qint64 weld = 0;        ///< equal vertices
        qint64 triangulate = 0; ///< faces
        qint64 normals = 0;     ///< where the file has none; 0 otherwise
    };

    /// \name What the file holds
    /// @{
    quint64 bytes = 0;                         ///< of its text
    quint64 positions = 0;                     ///< "v" lines
    quint64 normals = 0;                       ///< "vn" lines
    quint64 texCoords = 0;                     ///< "vt" lines
    quint64 faces = 0;                         ///< "f" lines that can be read
    quint64 corners = 0;                       ///< of those faces, together
    QMap<quint32, quint64> facesByCornerCount; ///< corner count to number of faces
    /// @}

    /// \name What became of it
    /// @{
    quint64 verticesBeforeWelding = 0;    ///< one per corner
    quint64 vertices = 0;                 ///< after welding
    quint64 triangles = 0;                ///< of all faces drawn
    quint64 facesDrawn = 0;               ///< faces that give at least one triangle
    QVector<FacesNotDrawn> facesNotDrawn; ///< by their first face; with facesDrawn all faces
    /// @}

    Stages stages; ///< where the time went
};

/// @}

} // namespace Halvard::Orv
