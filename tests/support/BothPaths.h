/// \file
/// The loader's two paths on one file.
#pragma once

#include "support/UploadedModel.h"

#include "LoaderPaths.h"

#include <QtCore/QString>

namespace OrvTest {

inline constexpr Halvard::Orv::LoaderPath BothPaths[] = {Halvard::Orv::LoaderPath::Fast,
                                                         Halvard::Orv::LoaderPath::Lines};

/// Loads a file by one path; an OpenGL context should be current.
UploadedModel loadByPath(const QString &fileName, Halvard::Orv::LoaderPath path,
                         const Halvard::Orv::OBJScanLimits &limits = {});

/// Loads a file by both paths: everything on the GPU, every record and every message
/// must be the same.
/// \return what came out.
UploadedModel expectSameOnBothPaths(const QString &fileName,
                                    const Halvard::Orv::OBJScanLimits &limits = {});

} // namespace OrvTest
