/// \file
/// Names of materials that the loader cuts at a blank.
#pragma once

#include "FindingTable.h"
#include "Materials.h"

#include <QtCore/QMap>

namespace Halvard::Orv::Checking {

/// Collects names with blanks, of "usemtl" and "newmtl" lines alike. Cutting them does no harm as
/// long as no two of them are the same up to the blank.
class NameCuts
{
public:
    NameCuts(FindingTable &findings, const Materials &materials)
        : _findings(findings), _materials(materials)
    {}

    /// A name that is read up to its first blank.
    void addCut(const QString &word, const QString &full, qint64 line, int file);
    /// Settles how severe the findings are.
    void finish();

private:
    struct Cut
    {
        QString fullName; ///< The first one.
        bool isOnlyOne;
    };

    FindingTable &_findings;
    const Materials &_materials;
    QMap<QString, Cut> _cuts; // by the word that is read
};

} // namespace Halvard::Orv::Checking
