/// \file
/// The two paths by which an OBJ file becomes a model, for the project's own tests
/// and benchmarks. loadModelFromOBJFile() chooses by itself.
#pragma once

#include "Scanning/OBJScanLimits.h"

class QString;

namespace Halvard::Orv {

class GPUModel;

enum class LoaderPath
{
    Fast, ///< scanned as bytes, prepared as plain arrays; by lines where that cannot be
    Lines ///< every line through an OBJReader, a ModelBuilder for the rest: the definition
};

/// As loadModelFromOBJFile(). Nobody can tell the path from the result.
GPUModel *loadModelByPath(const QString &fileName, QString &errorMessage, LoaderPath path,
                          const OBJScanLimits &limits = {});

} // namespace Halvard::Orv
