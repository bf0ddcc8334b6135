/// \file
/// Reading material libraries from files and from anything else.
#pragma once

class QIODevice;
class QString;

namespace Halvard::Orv {

class ModelBuilder;

/// As loadMaterialsFromMTLFile(), from a device.
///
/// \param device open for reading, in text mode.
/// \param fileName beside which texture paths are resolved.
void loadMaterials(QIODevice &device, const QString &fileName, ModelBuilder &builder);

/// As loadMaterialsFromMTLFile().
/// \param reason where not null, receives why false is returned.
bool loadMaterialsOfFile(const QString &fileName, ModelBuilder &builder, QString *reason);

} // namespace Halvard::Orv
