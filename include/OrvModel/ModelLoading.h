/// \file
/// The two file loaders: a whole OBJ model, and one MTL material library.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <OrvGL/GPUModel.h>

#include <QtCore/QString>

#include <memory>

namespace Halvard::Orv {

/// \addtogroup read
/// @{

class ModelBuilder;

/// Loads a Wavefront OBJ file, and the material libraries that it names, into a
/// model that is ready to draw.
///
/// Faces of any number of corners are triangulated; GPU vertices whose bytes are
/// the same are welded; a file without "vn" lines gets smooth normals. The model
/// has the attributes "va_Vertex" (3 floats), "va_Normal" (3 floats) and, when
/// the file has "vt" lines, "va_TexCoord" (2 floats); one bundle with one
/// indirect command per material that has faces; the materials as records of the
/// plan "OBJMaterial" and one "InstanceInfo" record with identity matrices per
/// command.
///
/// Lines that do not parse are skipped silently. Faces before the first "usemtl"
/// have the material "<default>"; faces under a name that no library defines are
/// not drawn. An index that selects nothing selects zeros.
///
/// \param fileName the OBJ file. Material libraries are looked for beside it.
/// \param errorMessage assigned when the result is null, untouched otherwise:
///        "Failed to load OBJ file '%1'" when the file is missing or cannot be
///        opened, "Failed to load MTL file '%1'", with the resolved path, when
///        that is so for a material library. A warning says more where a file is
///        no regular file, has more than the 2^31 - 1 bytes of values or indices
///        that a stream can hold, or does not fit into memory.
/// \return a new model that the caller owns; null as above. A file without
///         anything to draw, or a call without a current OpenGL context, gives a
///         model without bundles.
///
/// Call it on the thread whose OpenGL context is current.
ORVMODEL_EXPORT GPUModel *loadModelFromOBJFile(const QString &fileName, QString &errorMessage);

/// Reads a Wavefront MTL file and makes one material group of the builder from
/// each "newmtl" section: a record of the plan "OBJMaterial" with the members
/// Ka, Kd, Ks, Ns, d, map_Kd, map_Ks, map_Ka and map_Ns that the section sets,
/// under their MTL names. Every material starts with a "d" of 1.
///
/// A material whose name the builder has already keeps its first definition.
/// Malformed lines and unknown keywords are skipped. Texture files are not
/// opened; their paths are resolved beside the MTL file.
///
/// \param fileName the MTL file.
/// \param builder receives the groups, in the order of the file.
/// \return false, with the builder unchanged, when the file is missing, cannot be
///         opened, or is no regular file; and when memory ends: the builder then
///         has the materials before the one that did not fit. What the builder's
///         allocator throws passes through; so it is then, too.
///
/// The first call that opens a file registers the plan "OBJMaterial".
ORVMODEL_EXPORT bool loadMaterialsFromMTLFile(const QString &fileName, ModelBuilder &builder);

/// @}

} // namespace Halvard::Orv
