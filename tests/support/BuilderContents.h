/// \file
/// What a builder holds, and what has been prepared for the upload, as plain values. Knows the
/// library's internals.
#pragma once

#include "support/PlainModel.h"
#include "support/UploadedModel.h"

#include "Preparing/GeometryPreparing.h"
#include <OrvModel/ModelBuilder.h>

namespace OrvTest {

/// The attributes, faces and groups of a builder, whose groups are numbered from 0 in the order
/// of their creation, as those of a loader are.
PlainModel contentsOf(Halvard::Orv::ModelBuilder &builder);

/// The streams and commands that the builder has prepared for the key 0.
Bundle preparedBundle(Halvard::Orv::ModelBuilder &builder);
/// The same, as the loader prepared them.
Bundle preparedBundle(const Halvard::Orv::PreparedGeometry &model);

} // namespace OrvTest
