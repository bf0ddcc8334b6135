/// \file
/// From the text of OBJ and MTL files to values, indices, faces and groups.
#pragma once

#include "support/PlainModel.h"

#include <QtCore/QString>

namespace OrvReference {

using OrvTest::PlainModel;

/// Reads an OBJ file and the libraries it names.
/// \return false, with `error` set, when the file or one of its libraries cannot be opened.
bool readOBJFile(const QString &fileName, PlainModel &model, QString &error);

/// Adds the materials of an MTL file that the model does not have yet.
/// \return false when the file cannot be opened.
bool readMTLFile(const QString &fileName, PlainModel &model);

} // namespace OrvReference
