/// \file
/// The loader's two roads on one file.
#pragma once

#include "support/MessageCapture.h"
#include "support/QtPrinting.h"

#include "LoaderPaths.h"

#include <OrvGL/DrawBuffers.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <map>
#include <string>
#include <vector>

namespace OrvTest {

/// What one road makes of a file.
struct RoadOutcome
{
    bool isModel = false;
    QString errorMessage;
    std::vector<Message> messages; ///< without addresses
    int bundleCount = 0;
    unsigned vertexCount = 0;
    unsigned indexType = 0;
    QByteArray indices;
    std::map<QString, QByteArray> attributes;
    QVector<Halvard::Orv::DrawElementsIndirectCommand> commands;
    std::vector<QString> materialNames;
    std::vector<std::vector<std::string>> records;

    /// The texts of the warnings.
    std::vector<std::string> warnings() const;
};

/// Loads a file by one road; an OpenGL context should be current.
RoadOutcome loadByRoad(const QString &fileName, Halvard::Orv::LoaderPath road,
                       const Halvard::Orv::OBJScanLimits &limits = {});

/// Loads a file by both roads: everything on the GPU, every record and every message
/// must be the same. The error message is "untouched" where the loader leaves it alone.
/// \return what came out.
RoadOutcome expectSameOnBothRoads(const QString &fileName,
                                  const Halvard::Orv::OBJScanLimits &limits = {});

} // namespace OrvTest
