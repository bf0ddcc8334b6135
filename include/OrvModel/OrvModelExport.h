/// \file
/// The export macro of libOrvModel: what carries it is the library's boundary,
/// everything else is hidden.
#pragma once

#include <QtCore/QtGlobal>

/// \def ORVMODEL_EXPORT
/// Marks what libOrvModel exports; everything else is hidden.
#if defined(ORVMODEL_STATIC)
#define ORVMODEL_EXPORT
#elif defined(ORVMODEL_BUILD)
#define ORVMODEL_EXPORT Q_DECL_EXPORT
#else
#define ORVMODEL_EXPORT Q_DECL_IMPORT
#endif
