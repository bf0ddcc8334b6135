/// \file
/// The material of faces whose file selects none.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <OrvCore/InstanceData.h>

namespace Halvard::Orv {

/// \addtogroup upload
/// @{

/// A light grey, opaque material: a record of the plan "OBJMaterial" with Ka
/// (0, 0, 0), Kd (0.7, 0.7, 0.7), Ks (1, 1, 1), Ns 10, d 1, and one plain white
/// texture as both map_Kd and map_Ks.
///
/// The texture belongs to the texture manager. The plan is not registered by
/// this call. Needs the thread whose OpenGL context is current; without a
/// context the two textures are null.
ORVMODEL_EXPORT InstanceData makeDefaultMaterial();

/// @}

} // namespace Halvard::Orv
