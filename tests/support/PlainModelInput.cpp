#include "support/PlainModelInput.h"

#include "support/ModelBuilding.h"

#include <algorithm>

namespace OrvTest {

using namespace Halvard::Orv;

namespace {

template <typename T>
void append(GrowArray<T> &array, const std::vector<T> &values)
{
    for (const T value : values)
        array.append(value);
}

void append(OBJAttribute &to, const PlainAttribute &attribute)
{
    append(to.values, attribute.values);
    append(to.indices, attribute.indices);
}

/// A run of one face for each face of the model.
std::vector<FaceRun> singleRuns(const PlainModel &model)
{
    std::vector<FaceRun> runs;
    FaceRun next = {0, 1, 0, 0};
    for (const quint32 count : model.cornerCounts) {
        runs.push_back(next);
        ++next.firstFace;
        next.firstCorner += count;
        next.firstLarge += count >= CornerCounts::Escape ? 1 : 0;
    }
    return runs;
}

/// Adds a face to the runs of its group.
void addToRuns(FaceGroup &group, const FaceRun &face)
{
    if (!group.runs.empty()) {
        FaceRun &last = group.runs.back();
        if (last.firstFace + last.faceCount == face.firstFace) {
            ++last.faceCount;
            return;
        }
    }
    group.runs.push_back(face);
}

/// The groups that have faces, by their first face.
std::vector<FaceGroup> faceGroups(const PlainModel &model)
{
    const std::vector<FaceRun> faces = singleRuns(model);
    std::vector<FaceGroup> groups;
    for (const PlainGroup &group : model.groups) {
        if (group.faces.empty())
            continue;
        groups.push_back({group.name, {}});
        for (const quint32 face : group.faces)
            addToRuns(groups.back(), faces.at(face));
    }
    std::sort(groups.begin(), groups.end(), [](const FaceGroup &first, const FaceGroup &second) {
        return first.runs.front().firstFace < second.runs.front().firstFace;
    });
    return groups;
}

} // namespace

OBJGeometry toGeometry(const PlainModel &model)
{
    OBJGeometry geometry;
    append(geometry.positions, model.positions());
    append(geometry.normals, model.normals());
    append(geometry.texCoords, model.texCoords());
    for (const quint32 count : model.cornerCounts)
        geometry.cornerCounts.append(count);
    geometry.cornerCount = model.cornerCount();
    geometry.groups = faceGroups(model);
    return geometry;
}

void readInto(ModelBuilder &builder, const PlainModel &model)
{
    for (const auto &[name, attribute] : model.attributes) {
        if (!attribute.values.empty())
            addAttribute(builder, name, attribute.components, attribute.values, attribute.indices);
    }
    addFaces(builder, model.cornerCounts);
    for (const PlainGroup &group : model.groups)
        addGroup(builder, group.name, group.faces);
    if (model.normals().values.empty())
        builder.generateNormals(normalName());
}

} // namespace OrvTest
