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

} // namespace Halvard::Orv
