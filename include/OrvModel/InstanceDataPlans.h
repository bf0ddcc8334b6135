/// \file
/// Registration of the two instance-data plans that the library declares.
#pragma once

#include <OrvModel/OrvModelExport.h>

namespace Halvard::Orv {

/// \addtogroup upload
/// @{

/// Registers the plan "InstanceInfo", the per-model record: "ModelMatrix" and
/// "ModelNormalMatrix", each a 4x4 matrix of floats.
///
/// The first ModelBuilder of the process calls it once; another call registers
/// a second plan of the same name. Safe on any thread.
ORVMODEL_EXPORT void registerInstanceInfo();

/// Registers the plan "OBJMaterial": "Ns" and "d" (float), "Kd", "Ks" and "Ke"
/// (three floats), "map_Ns", "map_Kd", "map_Ks" and "map_Ke" (textures), in this
/// order.
///
/// loadMaterialsFromMTLFile() calls it once, the first time it opens a file;
/// another call registers a second plan of the same name. Safe on any thread.
ORVMODEL_EXPORT void registerOBJMaterial();

/// @}

} // namespace Halvard::Orv
