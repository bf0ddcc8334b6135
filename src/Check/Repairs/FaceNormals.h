/// \file
/// Normals for corners that have none.
#pragma once

#include "Repairs/OBJSurvey.h"

#include <QtCore/QByteArray>
#include <QtCore/QMap>

#include <vector>

namespace Halvard::Orv::Checking {

/// The normals of faces, as text, each once.
class FaceNormals
{
public:
    explicit FaceNormals(const OBJSurvey &survey) : _survey(survey) {}

    /// Adds the normals of all faces with a corner that has none.
    void read(OBJLines &lines);

    /// Whether a corner of the face selects no normal of the file.
    bool isWanted(const std::vector<Corner> &corners) const;

    /// The normal of a face in the order in which they were added; -1 where it was not.
    int number(const std::vector<Corner> &corners) const
    {
        return _numbers.value(textOf(corners), -1);
    }
    /// The lines to write.
    const std::vector<QByteArray> &lines() const { return _lines; }

private:
    QByteArray textOf(const std::vector<Corner> &corners) const;

    const OBJSurvey &_survey;
    QMap<QByteArray, int> _numbers; // ordered as NameSet is: a file chooses its normals
    std::vector<QByteArray> _lines;
};

} // namespace Halvard::Orv::Checking
