#include "support/RandomOBJText.h"

#include <string>

namespace OrvTest {

namespace {

std::string digits(Dice &dice, int most)
{
    std::string text;
    for (int count = dice.between(1, most); count > 0; --count)
        text += static_cast<char>('0' + dice.below(10));
    return text;
}

/// What programs write, mostly.
std::string number(Dice &dice)
{
    std::string text = dice.oneIn(3) ? "-" : "";
    text += digits(dice, dice.oneIn(10) ? 18 : 4);
    if (!dice.oneIn(8))
        text += "." + (dice.oneIn(30) ? "" : digits(dice, dice.oneIn(6) ? 14 : 7));
    if (dice.oneIn(20)) {
        const char *const forms[] = {"e", "E", "e+", "e-", "e-0"};
        text += forms[dice.below(5)] + std::to_string(dice.below(dice.oneIn(2) ? 10 : 50));
    }
    return text;
}

/// \param fromLast whether the line counts backwards.
std::string index(Dice &dice, bool fromLast)
{
    if (dice.oneIn(60))
        return "";
    const std::string sign = fromLast != dice.oneIn(25) ? "-" : "";
    return sign + digits(dice, dice.oneIn(20) ? 11 : dice.between(1, 8));
}

/// One of the forms, which a line keeps for the most part.
std::string corner(Dice &dice, int form, bool fromLast)
{
    if (dice.oneIn(60))
        form = dice.below(4);
    std::string text = index(dice, fromLast);
    if (form == 1 || form == 3)
        text += "/" + index(dice, fromLast);
    if (form == 2)
        text += "/";
    if (form >= 2)
        text += "/" + index(dice, fromLast);
    return text;
}

std::string blank(Dice &dice)
{
    if (!dice.oneIn(60))
        return " ";
    const char *const blanks[] = {"  ", "   ", "\t", " \t", "\v", "\r", " \r", "\xc2\xa0", ""};
    return blanks[dice.below(9)];
}

std::string lineEnd(Dice &dice, bool returns)
{
    if (dice.oneIn(100))
        return "\r\r\n";
    if (dice.oneIn(100))
        return " \n";
    return returns ? "\r\n" : "\n";
}

std::string numbers(Dice &dice, const std::string &keyword, int count)
{
    if (dice.oneIn(50))
        count = dice.below(7);
    std::string text = keyword;
    for (int i = 0; i < count; ++i) {
        text += blank(dice);
        text += number(dice);
    }
    return text;
}

std::string face(Dice &dice)
{
    std::string text = "f";
    const int form = dice.below(4);
    const bool fromLast = dice.oneIn(4);
    const int count = dice.oneIn(2) ? 3 : dice.oneIn(3) ? dice.below(12) : 4;
    for (int i = dice.oneIn(200) ? 300 : count; i > 0; --i) {
        text += blank(dice);
        text += corner(dice, form, fromLast);
    }
    return text;
}

std::string otherLine(Dice &dice)
{
    const char *const lines[] = {"",
                                 "# comment",
                                 "g group",
                                 "s off",
                                 "usemtl <default>",
                                 "usemtl none",
                                 "usemtl \xc3\xa4",
                                 "vp 1 2",
                                 "l 1 2",
                                 "f # c",
                                 "# \xff"};
    return lines[dice.below(11)];
}

/// Runs of lines of one kind, with something else in between now and then.
QByteArray plainFile(Dice &dice)
{
    std::string text;
    const bool returns = dice.oneIn(4);
    for (int runs = dice.between(1, 8); runs > 0; --runs) {
        const int kind = dice.below(5);
        for (int lines = dice.between(1, 12); lines > 0; --lines) {
            if (kind == 4 || dice.oneIn(30))
                text += otherLine(dice);
            else if (kind == 3)
                text += face(dice);
            else
                text += kind == 0   ? numbers(dice, "v", 3)
                        : kind == 1 ? numbers(dice, "vn", 3)
                                    : numbers(dice, "vt", 2);
            text += lineEnd(dice, returns);
        }
    }
    return QByteArray::fromStdString(text);
}

void damage(Dice &dice, QByteArray &text)
{
    for (int count = dice.below(4); count > 0 && !text.isEmpty(); --count) {
        const int place = dice.below(text.size());
        switch (dice.below(4)) {
        case 0:
            text.remove(place, dice.between(1, 3));
            break;
        case 1:
            text.insert(place, static_cast<char>(dice.below(256)));
            break;
        case 2:
            text[place] = "0 /-.\n\r\teE+#vfnt\v\x80\xff"[dice.below(20)];
            break;
        default:
            text.truncate(place);
            break;
        }
    }
}

} // namespace

QByteArray randomOBJText(Dice &dice)
{
    QByteArray text = plainFile(dice);
    if (dice.oneIn(2))
        damage(dice, text);
    return text;
}

} // namespace OrvTest
