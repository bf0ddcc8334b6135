#include "Scanning/OBJScanLimits.h"

namespace Halvard::Orv {

namespace {

QString moreThan(size_t limit, const char *of)
{
    return QStringLiteral("more than %1 %2").arg(limit).arg(QLatin1String(of));
}

} // namespace

QString OBJCounts::excess(const OBJScanLimits &limits) const
{
    if (positions > limits.streamElements)
        return moreThan(limits.streamElements, "numbers in \"v\" lines");
    if (normals > limits.streamElements)
        return moreThan(limits.streamElements, "numbers in \"vn\" lines");
    if (texCoords > limits.streamElements)
        return moreThan(limits.streamElements, "numbers in \"vt\" lines");
    if (corners > limits.corners())
        return moreThan(limits.corners(), "corners of faces");
    if (faces > limits.streamElements)
        return moreThan(limits.streamElements, "faces");
    return {};
}

double readFraction(qint64 bytes, qint64 fileBytes)
{
    // Of a stream, whose size nobody knows, half is left after so many bytes, whatever comes.
    constexpr double StreamBytes = 64e6;
    const auto read = static_cast<double>(bytes);
    return fileBytes > 0 ? read / static_cast<double>(fileBytes) : read / (read + StreamBytes);
}

OBJCounts countsOf(const OBJGeometry &geometry)
{
    OBJCounts counts;
    counts.positions = geometry.positions.values.size();
    counts.normals = geometry.normals.values.size();
    counts.texCoords = geometry.texCoords.values.size();
    counts.corners = geometry.cornerCount;
    counts.faces = geometry.faceCount();
    return counts;
}

QString tooLongLine(const OBJScanLimits &limits)
{
    return QStringLiteral("a line of more than %1 bytes").arg(limits.lineBytes);
}

} // namespace Halvard::Orv
