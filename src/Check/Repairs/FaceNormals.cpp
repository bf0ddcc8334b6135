#include "Repairs/FaceNormals.h"

#include <algorithm>
#include <cmath>

namespace Halvard::Orv::Checking {

namespace {

constexpr size_t FewestCorners = 3;
constexpr int Digits = 6; // behind the point

/// A component of a unit vector, in as few digits as it takes.
QByteArray component(double value)
{
    QByteArray text = QByteArray::number(value, 'f', Digits);
    while (text.endsWith('0'))
        text.chop(1);
    if (text.endsWith('.'))
        text.chop(1);
    return text == "-0" ? QByteArray("0") : text;
}

} // namespace

void FaceNormals::read(OBJLines &lines)
{
    while (lines.next()) {
        if (lines.kind() != OBJLineKind::Face || !lines.readCorners() || !isWanted(lines.corners()))
            continue;
        const QByteArray text = textOf(lines.corners());
        if (_numbers.contains(text))
            continue;
        _numbers.insert(text, static_cast<int>(_lines.size()));
        _lines.push_back(text);
    }
}

bool FaceNormals::isWanted(const std::vector<Corner> &corners) const
{
    return corners.size() >= FewestCorners && _survey.vn.isIncomplete() &&
           std::any_of(corners.cbegin(), corners.cend(),
                       [this](const Corner &corner) { return !_survey.vn.has(corner.vn); });
}

/// The normal on the side from which the ring runs counter-clockwise, by Newell's sum around the
/// first corner. A face that has no side gets the one towards +z: any direction is as good, and
/// zeros would leave its corners dark.
QByteArray FaceNormals::textOf(const std::vector<Corner> &corners) const
{
    double sum[3] = {0, 0, 0};
    double origin[3] = {0, 0, 0};
    double before[3] = {0, 0, 0};
    bool isFirst = true;
    for (const Corner &corner : corners) {
        double point[3] = {0, 0, 0};
        const auto index = static_cast<size_t>(corner.v); // huge where negative
        if (index < _survey.positions.count()) {
            for (int i = 0; i < 3; ++i)
                point[i] = double(_survey.positions[index][i]);
        }
        if (isFirst)
            std::copy_n(point, 3, origin);
        isFirst = false;
        for (int i = 0; i < 3; ++i)
            point[i] -= origin[i];
        for (int i = 0; i < 3; ++i) {
            const int j = (i + 1) % 3;
            const int k = (i + 2) % 3;
            sum[i] += before[j] * point[k] - before[k] * point[j];
        }
        std::copy_n(point, 3, before);
    }
    // The components of a float's range have squares within a double's; a product of two lengths
    // squared may still pass it, so the sum is scaled first.
    const double largest = std::max({std::fabs(sum[0]), std::fabs(sum[1]), std::fabs(sum[2])});
    QByteArray text("vn");
    const bool hasSide = std::isfinite(sum[0] + sum[1] + sum[2]) && largest > 0;
    const double x = hasSide ? sum[0] / largest : 0;
    const double y = hasSide ? sum[1] / largest : 0;
    const double z = hasSide ? sum[2] / largest : 1;
    const double length = std::sqrt(x * x + y * y + z * z);
    for (const double value : {x, y, z})
        text += ' ' + component(value / length);
    return text;
}

} // namespace Halvard::Orv::Checking
