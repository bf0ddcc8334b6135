/// \file
/// A model before it is uploaded: what its files tell, as plain values.
#pragma once

#include "support/ModelRecord.h"

#include <QtCore/QString>

#include <map>
#include <vector>

namespace OrvTest {

/// Values and indices of one attribute. There is one index per corner of the faces that came
/// when the attribute had values already.
struct PlainAttribute
{
    int components = 0;
    std::vector<float> values; ///< `components` per value
    std::vector<quint32> indices;
};

struct PlainGroup
{
    QString name;
    Record material;
    std::vector<quint32> faces;
};

struct PlainModel
{
    std::map<QString, PlainAttribute> attributes;
    std::vector<quint32> cornerCounts; ///< of each face
    std::vector<PlainGroup> groups;    ///< in the order of their creation

    quint32 cornerCount() const;
    /// Null when there is none. Valid until the next group is created.
    PlainGroup *group(const QString &name);

    /// The attributes of OBJ files. One that the model does not have is made, or is empty
    /// where it must not be.
    PlainAttribute &positions();
    PlainAttribute &normals();
    PlainAttribute &texCoords();
    const PlainAttribute &positions() const;
    const PlainAttribute &normals() const;
    const PlainAttribute &texCoords() const;
};

} // namespace OrvTest
