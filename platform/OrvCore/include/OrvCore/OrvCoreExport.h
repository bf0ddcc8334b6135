/// \file
/// Which symbols libOrvCore exports.
#pragma once

#include <QtCore/QtGlobal>

/// Marks what libOrvCore exports; everything else is hidden. CMake defines OrvCore_EXPORTS while
/// the library itself is compiled.
#if defined(ORVCORE_STATIC)
#define ORVCORE_EXPORT
#elif defined(OrvCore_EXPORTS)
#define ORVCORE_EXPORT Q_DECL_EXPORT
#else
#define ORVCORE_EXPORT Q_DECL_IMPORT
#endif
