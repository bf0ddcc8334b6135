#include "PrintedText.h"

#include "Confinement.h"

#include <OrvCheck/ModelCheck.h>

#include <QtCore/QStringList>

namespace Halvard::Orv::Cli {

namespace {

constexpr int LongestMessage = 10 * Apps::LongestName;

} // namespace

QString printedMessage(const QString &message)
{
    const QLatin1Char quote('\'');
    QStringList pieces = Confinement::withRelativePaths(message).split(quote);
    for (int i = 1; i + 1 < pieces.size(); ++i)
        pieces[i] = Apps::shortened(pieces.at(i), Apps::LongestName);
    return printableText(Apps::shortened(pieces.join(quote), LongestMessage));
}

} // namespace Halvard::Orv::Cli
