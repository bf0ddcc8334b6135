#include "PrintedName.h"

#include <OrvCheck/ModelCheck.h>

namespace Halvard::Orv::Apps {

QString shortened(const QString &text, int most)
{
    if (text.size() <= most)
        return text;
    const QString gap = QStringLiteral("...");
    const int end = (most - gap.size()) / 3;
    return text.left(most - gap.size() - end) + gap + text.right(end);
}

QString printed(const QString &name)
{
    return printableText(shortened(name, LongestName));
}

} // namespace Halvard::Orv::Apps
