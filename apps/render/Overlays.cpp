#include "Overlays.h"

#include "Bounds.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Halvard::Orv::Render {

namespace {

constexpr QRgb AxisColours[] = {0xffd9483b, 0xff4f9e32, 0xff2f6fd6};
constexpr QRgb MarkColour = 0xffff7a00;
constexpr QRgb MarkBorder = 0xff2a1400;

/// Lines keep their weight in larger pictures.
float lineScale(const QSize &picture)
{
    constexpr float UsualSide = 900;
    return std::max(1.0f, float(std::min(picture.width(), picture.height())) / UsualSide);
}

/// A place of the model in the camera's space. In double: see Place.
QVector3D inUnits(const Place &place, const Camera &camera)
{
    const double scale = double(camera.rootScale) * double(camera.rootScale);
    const QVector3D &centre = camera.centre;
    return {float((place.x - double(centre.x())) * scale),
            float((place.y - double(centre.y())) * scale),
            float((place.z - double(centre.z())) * scale)};
}

bool isFinite(const QVector3D &point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y()) && std::isfinite(point.z());
}

using Coordinates = std::array<double, 3>;

Place placeOf(const Coordinates &c)
{
    return {c[0], c[1], c[2]};
}

/// Strokes of the letters X, Y and Z in a square from -1 to 1.
std::vector<std::array<float, 4>> strokesOf(int axis)
{
    switch (axis) {
    case 0:
        return {{-0.8f, -1, 0.8f, 1}, {-0.8f, 1, 0.8f, -1}};
    case 1:
        return {{-0.8f, 1, 0, 0}, {0.8f, 1, 0, 0}, {0, 0, 0, -1}};
    default:
        return {{-0.8f, 1, 0.8f, 1}, {0.8f, 1, -0.8f, -1}, {-0.8f, -1, 0.8f, -1}};
    }
}

} // namespace

double gridSpacing(const Bounds &bounds)
{
    constexpr double SpacingsToARadius = 3;
    const double wanted = viewUnit(bounds) / SpacingsToARadius;
    const double power = std::pow(10, std::floor(std::log10(wanted)));
    const double digits = wanted / power;
    return power * (digits < 1.5 ? 1 : digits < 3.5 ? 2 : digits < 7.5 ? 5 : 10);
}

std::vector<Line> gridLines(const Bounds &bounds, const Camera &camera, UpAxis up,
                            const QColor &background, LineView &view)
{
    constexpr double Reach = 2.6; // in radii
    const size_t upward = up == UpAxis::X ? 0 : up == UpAxis::Y ? 1 : 2;
    const double spacing = gridSpacing(bounds);
    const double reach = Reach * viewUnit(bounds);
    const QVector3D middle = bounds.centre();
    Coordinates foot = {double(middle.x()), double(middle.y()), double(middle.z())};
    foot[upward] = double(bounds.minimum()[int(upward)]);

    QColor plain = background.lightnessF() > 0.5 ? QColor(0, 0, 0) : QColor(255, 255, 255);
    plain.setAlphaF(0.16);
    std::vector<Line> lines;
    for (size_t axis = 0; axis < 3; ++axis) {
        if (axis == upward)
            continue;
        const size_t across = 3 - axis - upward;
        const double first = std::ceil((foot[across] - reach) / spacing);
        const double last = std::floor((foot[across] + reach) / spacing);
        // Far from the origin there may be no different multiples.
        for (double i = first; i <= last && i - first <= 2 * Reach * 10; ++i) {
            Coordinates from = foot;
            from[across] = i * spacing;
            Coordinates to = from;
            from[axis] -= reach;
            to[axis] += reach;
            QColor colour = plain;
            if (i == 0) {
                colour = QColor(AxisColours[axis]);
                colour.setAlphaF(0.8);
            }
            lines.push_back(
                {inUnits(placeOf(from), camera), inUnits(placeOf(to), camera), colour, 1.2f});
        }
    }
    view.matrix = camera.projection * camera.view;
    view.isHidden = true;
    view.fadeCentre = inUnits(placeOf(foot), camera);
    view.fadeRadius = float(Reach);
    return lines;
}

std::vector<Line> axisLines(const Camera &camera, const QSize &picture)
{
    const float scale = lineScale(picture);
    const float arm = std::min(34 * scale, 0.09f * float(picture.width()));
    const QVector3D pixel(2.0f / float(picture.width()), 2.0f / float(picture.height()), 0);
    const QVector3D origin = QVector3D(-1, -1, 0) + QVector3D(1.7f * arm, 1.7f * arm, 0) * pixel;

    std::array<int, 3> order = {0, 1, 2};
    const auto direction = [&camera](int axis) { return camera.view.column(axis).toVector3D(); };
    // The axis that points away first.
    std::sort(order.begin(), order.end(),
              [&](int a, int b) { return direction(a).z() < direction(b).z(); });

    std::vector<Line> lines;
    for (const int axis : order) {
        const QVector3D way = direction(axis) * QVector3D(1, 1, 0);
        const QColor colour(AxisColours[axis]);
        lines.push_back({origin, origin + way * arm * pixel, colour, 2.2f * scale});
        const QVector3D letter = origin + way * (1.38f * arm) * pixel;
        const QVector3D size = QVector3D(1, 1, 0) * (0.13f * arm) * pixel;
        for (const auto &stroke : strokesOf(axis))
            lines.push_back({letter + QVector3D(stroke[0], stroke[1], 0) * size,
                             letter + QVector3D(stroke[2], stroke[3], 0) * size, colour,
                             1.4f * scale});
    }
    return lines;
}

std::vector<Line> markLines(const std::vector<QVector3D> &corners, const Camera &camera,
                            const QSize &picture)
{
    const float scale = lineScale(picture);
    std::vector<QVector3D> points;
    for (const QVector3D &corner : corners) {
        if (isFinite(corner))
            points.push_back(
                inUnits({double(corner.x()), double(corner.y()), double(corner.z())}, camera));
    }
    std::vector<Line> lines;
    const auto add = [&](QRgb colour, float edge, float dot) {
        for (size_t i = 0; i < points.size() && points.size() > 1; ++i)
            lines.push_back(
                {points[i], points[(i + 1) % points.size()], QColor(colour), edge * scale});
        for (const QVector3D &point : points)
            lines.push_back({point, point, QColor(colour), dot * scale});
    };
    // A dark rim tells the mark from surfaces of its own colour.
    add(MarkBorder, 4.4f, 9.4f);
    add(MarkColour, 2.6f, 7.2f);
    return lines;
}

} // namespace Halvard::Orv::Render
