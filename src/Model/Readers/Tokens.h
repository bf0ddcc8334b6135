/// \file
/// Splitting a line of text at blanks.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv {

/// Calls `take(begin, length)` for every longest run of characters that are no
/// blanks. Blanks are those of QChar::isSpace(), which is what "\s" means to
/// QRegExp; the expression itself costs ten times as much per line.
template <typename Take>
void forEachToken(const QString &line, Take take)
{
    const QChar *text = line.constData();
    const int length = line.size();
    int position = 0;
    while (position < length) {
        while (position < length && text[position].isSpace())
            ++position;
        const int begin = position;
        while (position < length && !text[position].isSpace())
            ++position;
        if (position > begin)
            take(begin, position - begin);
    }
}

} // namespace Halvard::Orv
