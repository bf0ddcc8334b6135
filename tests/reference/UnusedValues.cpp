#include "reference/UnusedValues.h"

#include <QtCore/QList>

#include <map>

namespace OrvReference {

namespace {

/// Which part of a face's corner has indices of the values of `keyword`.
int partOf(const QByteArray &keyword)
{
    if (keyword == "v")
        return 0;
    return keyword == "vt" ? 1 : 2;
}

/// Lets `change` replace the positive indices of a face's line.
template <typename Change>
void forEachIndex(QByteArray &line, int part, const Change &change)
{
    QList<QByteArray> words = line.split(' ');
    for (int word = 1; word < words.size(); ++word) {
        QList<QByteArray> parts = words[word].split('/');
        bool ok = false;
        const int index = part < parts.size() ? parts[part].toInt(&ok) : 0;
        if (!ok || index <= 0)
            continue;
        parts[part] = QByteArray::number(change(index));
        words[word] = parts.join('/');
    }
    line = words.join(' ');
}

} // namespace

QByteArray withoutUnusedValues(const QByteArray &text, const QByteArray &keyword)
{
    const int part = partOf(keyword);
    QList<QByteArray> lines = text.split('\n');
    std::map<int, int> numbers; // by the number so far, 0 until it is known
    for (QByteArray &line : lines) {
        if (line.startsWith("f "))
            forEachIndex(line, part, [&numbers](int index) {
                numbers[index] = 0;
                return index;
            });
    }
    int next = 1;
    for (auto &[before, after] : numbers)
        after = next++;

    QList<QByteArray> kept;
    int number = 0;
    for (QByteArray &line : lines) {
        if (line == keyword || line.startsWith(keyword + ' ')) {
            if (numbers.count(++number) == 0)
                continue;
        } else if (line.startsWith("f ")) {
            forEachIndex(line, part, [&numbers](int index) { return numbers.at(index); });
        }
        kept << line;
    }
    return kept.join('\n');
}

} // namespace OrvReference
