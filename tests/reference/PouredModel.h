/// \file
/// A model as its files tell it, before anything is built from it.
#pragma once

#include "reference/UploadedModel.h"

#include <QtCore/QString>

#include <map>
#include <vector>

namespace OrvReference {

struct Attribute
{
    int components = 0;
    std::vector<float> values;    ///< `components` per value.
    std::vector<quint32> indices; ///< One per corner of the faces read since the attribute exists.
};

struct MaterialGroup
{
    QString name;
    Record material;
    std::vector<quint32> faces;
};

struct PouredModel
{
    std::map<QString, Attribute> attributes;
    std::vector<quint32> cornersPerFace;
    std::vector<MaterialGroup> groups; ///< In the order of their creation.

    /// Null when there is none. Valid until the next group is created.
    MaterialGroup *group(const QString &name);
};

/// Reads an OBJ file and the libraries it names.
/// \return false, with `error` set, when the file or one of its libraries cannot be opened.
bool pourOBJFile(const QString &fileName, PouredModel &model, QString &error);

/// Adds the materials of an MTL file that the model does not have yet.
/// \return false when the file cannot be opened.
bool pourMTLFile(const QString &fileName, PouredModel &model);

} // namespace OrvReference
