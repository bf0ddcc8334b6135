/// \file
/// Which symbols libOrvGL exports.
#pragma once

#include <QtCore/QtGlobal>

/// Marks what libOrvGL exports; everything else is hidden. CMake defines OrvGL_EXPORTS while the
/// library itself is compiled.
#if defined(ORVGL_STATIC)
#define ORVGL_EXPORT
#elif defined(OrvGL_EXPORTS)
#define ORVGL_EXPORT Q_DECL_EXPORT
#else
#define ORVGL_EXPORT Q_DECL_IMPORT
#endif
