#include "reference/ModelGenerator.h"
#include "reference/NumberTexts.h"

namespace OrvReference {

namespace {

QString numbers(Dice &dice, int count, const Oddness &oddness)
{
    QString text;
    for (int i = 0; i < count; ++i) {
        text += QLatin1Char(' ');
        text += chance(dice, oddness.numbers) ? oddNumber(dice)
                                              : numberText(dice.real(0.0, 2.0), NumberStyle::Short);
    }
    return text;
}

QString mapLine(Dice &dice)
{
    const char *const keywords[] = {"map_Kd", "map_Ks", "map_Ka", "map_Ns"};
    const char *const paths[] = {"wood.png",
                                 "tex/wood.png",
                                 "../wood.png",
                                 "/abs/wood.png",
                                 "a#b.png",
                                 "-s 2 2 1 a.png",
                                 "",
                                 "./x/../y.png",
                                 ":/res/a.png",
                                 "c:\\a.png",
                                 "b\u00fcro.png",
                                 "~/a.png"};
    const QString keyword = QString::fromUtf8(oneOf(dice, keywords));
    return keyword + QLatin1Char(' ') + QString::fromUtf8(oneOf(dice, paths));
}

QString oddLine(Dice &dice)
{
    const char *const lines[] = {"",
                                 "# comment",
                                 "   # comment",
                                 "newmtl",
                                 "newmtl # none",
                                 "newmtl a b",
                                 "illum 2",
                                 "Ni 1.5",
                                 "Tr 0.5",
                                 "Ke 1 1 1",
                                 "map_Ke a.png",
                                 "map_d a.png",
                                 "bump a.png",
                                 "kd 1 1 1",
                                 "KD 1 1 1",
                                 "Kd",
                                 "Kd 1 1",
                                 "Kd 1 1 1 1",
                                 "Kd 1 1 #1",
                                 "Kd 1,1,1",
                                 "Kd 1;1;1",
                                 "Ka spectral f.rfl 1",
                                 "Ks xyz 1 1 1",
                                 "Ns",
                                 "d -halo 0.5",
                                 "d 0.5#x",
                                 "Ns 1e400",
                                 "map_Kd",
                                 "newmtl#x",
                                 "Kd#1 1 1",
                                 "v 1 2 3",
                                 "f 1 2 3",
                                 "\u00a0",
                                 "Kd\u00a01 1 1",
                                 "newmtl \u2003x"};
    return QString::fromUtf8(oneOf(dice, lines));
}

QString valueLine(Dice &dice, const Oddness &oddness)
{
    const char *const colours[] = {"Ka", "Kd", "Ks"};
    QString line;
    switch (dice.below(4)) {
    case 0:
        return QStringLiteral("Ns") + numbers(dice, 1, oddness);
    case 1:
        return QStringLiteral("d") + numbers(dice, 1, oddness);
    case 2:
        return mapLine(dice);
    default:
        line = QString::fromUtf8(oneOf(dice, colours));
        return line + numbers(dice, 3, oddness);
    }
}

} // namespace

QString materialName(Dice &dice)
{
    const char *const names[] = {
        "red",       "green",  "blue", "m1",   "m2", "m3",  "Red",           "x/y",     "<default>",
        "gr\u00fcn", "\u9752", "a#b",  "wood", "%1", "nan", "\u00e9t\u00e9", "e\u0301", "0"};
    // The first few are likely enough to be defined, defined again, and used.
    return QString::fromUtf8(names[dice.oneIn(4) ? dice.below(18) : dice.below(6)]);
}

QStringList materialLines(Dice &dice, const Oddness &oddness)
{
    QStringList lines;
    for (int section = dice.between(0, 4); section >= 0; --section) {
        // Now and then with values before the first material.
        if (!lines.isEmpty() || !dice.oneIn(5))
            lines << QStringLiteral("newmtl ") + materialName(dice);
        for (int count = dice.between(0, 5); count > 0; --count)
            lines << (chance(dice, oddness.lines) ? oddLine(dice) : valueLine(dice, oddness));
    }
    return lines;
}

} // namespace OrvReference
