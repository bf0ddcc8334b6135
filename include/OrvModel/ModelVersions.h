/// \file
/// Which version of the library this is.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <QtCore/QString>

namespace Halvard::Orv {

/// \addtogroup versions
/// @{

/// Version of the library's implementation, fixed when it is built.
class ORVMODEL_EXPORT ModelVersions
{
public:
    static QString getVersion(); ///< "1.0.0"
    static QString getGitHash(); ///< empty, not null
    static QString getMd5Sum();  ///< "1": a fixed text, not a digest
};

/// Version of the library's exported interface, fixed when it is built.
class ORVMODEL_EXPORT ModelExportVersions
{
public:
    static QString getVersion(); ///< "1.0.0"
    static QString getGitHash(); ///< empty, not null
    static QString getMd5Sum();  ///< "1": a fixed text, not a digest
};

/// @}

} // namespace Halvard::Orv
