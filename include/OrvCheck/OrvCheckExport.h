/// \file
/// The export macro of libOrvCheck: what carries it is the library's boundary,
/// everything else is hidden.
#pragma once

#include <QtCore/qglobal.h>

/// \def ORVCHECK_EXPORT
/// Marks what libOrvCheck exports; everything else is hidden.
#if defined(ORVCHECK_STATIC)
#define ORVCHECK_EXPORT
#elif defined(ORVCHECK_BUILD)
#define ORVCHECK_EXPORT Q_DECL_EXPORT
#else
#define ORVCHECK_EXPORT Q_DECL_IMPORT
#endif
