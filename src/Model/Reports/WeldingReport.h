/// \file
/// What welding brought, as a message and in the load report.
#pragma once

namespace Halvard::Orv {

/// Logs how many vertices welding left, and notes it in the current load report.
///
/// \param builder only its address is shown.
/// \param vertexCount vertices before welding, one per corner.
/// \param indexBytes size of one index.
void reportWelding(const void *builder, int vertexCount, int newVertexCount,
                   unsigned long indexBytes);

} // namespace Halvard::Orv
