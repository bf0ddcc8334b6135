#include "PrintedText.h"

#include "Confinement.h"

#include <OrvCheck/ModelCheck.h>

#include <QtCore/QStringList>

namespace Halvard::Orv::Cli {

namespace {

constexpr int LongestName = 200;
constexpr int LongestMessage = 10 * LongestName;

/// The beginning and the end, where what tells names apart mostly is.
QString cut(const QString &text, int most)
{
    if (text.size() <= most)
        return text;
    const QString gap = QStringLiteral("...");
    const int end = (most - gap.size()) / 3;
    return text.left(most - gap.size() - end) + gap + text.right(end);
}

} // namespace

QString printed(const QString &name)
{
    return printableText(cut(name, LongestName));
}

QString printedMessage(const QString &message)
{
    const QLatin1Char quote('\'');
    QStringList pieces = Confinement::withRelativePaths(message).split(quote);
    for (int i = 1; i + 1 < pieces.size(); ++i)
        pieces[i] = cut(pieces.at(i), LongestName);
    return printableText(cut(pieces.join(quote), LongestMessage));
}

} // namespace Halvard::Orv::Cli
