// What is mended in a line and the next: continued lines, decimal commas, line ends, encodings.
#include "Check/Repairs/RepairRows.h"

#include <gtest/gtest.h>

#include <QtCore/QTextCodec>

#include <memory>

namespace {

using OrvTest::expectRows;
using OrvTest::RepairRow;

const QByteArray Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";

/// Text in an encoding, with its byte-order mark.
QByteArray encoded(const char *codec, const QByteArray &text)
{
    const std::unique_ptr<QTextEncoder> encoder(QTextCodec::codecForName(codec)->makeEncoder());
    return encoder->fromUnicode(QString::fromUtf8(text));
}

TEST(TextRepair, JoinsContinuedLines)
{
    const std::vector<std::string> joinedOnce = {"model.obj:4 line-continued  1"};
    const std::vector<std::string> joinedTwice = {"model.obj:4 line-continued  2"};
    expectRows({
        {"face", Triangle + "f 1 2 \\\n3\n", {}, Triangle + "f 1 2 3\n", {}, joinedOnce},
        {"without a blank", Triangle + "f 1 2\\\n3\n", {}, Triangle + "f 1 2 3\n", {}, joinedOnce},
        {"blanks on both sides stay",
         Triangle + "f 1 2 \\\n  3\n",
         {},
         Triangle + "f 1 2   3\n",
         {},
         joinedOnce},
        {"blanks behind the backslash go",
         Triangle + "f 1 2 \\ \t\n3\n",
         {},
         Triangle + "f 1 2 3\n",
         {},
         joinedOnce},
        {"twice", Triangle + "f 1 \\\n2 \\\n3\n", {}, Triangle + "f 1 2 3\n", {}, joinedTwice},
        {"carriage returns",
         Triangle + "f 1 2 \\\r\n3\r\n",
         {},
         Triangle + "f 1 2 3\r\n",
         {},
         joinedOnce},
        {"no line follows", Triangle + "f 1 2 3 \\", {}, Triangle + "f 1 2 3 ", {}, joinedOnce},
        {"an empty line follows",
         Triangle + "f 1 2 3 \\\n\n",
         {},
         Triangle + "f 1 2 3 \n\n",
         {},
         joinedOnce},
        {"a comment follows",
         Triangle + "f 1 2 3 \\\n# 4\n",
         {},
         Triangle + "f 1 2 3 \n# 4\n",
         {},
         joinedOnce},
        {"a line of its own follows",
         Triangle + "f 1 2 3 \\\nf 3 2 1\n",
         {},
         Triangle + "f 1 2 3 \nf 3 2 1\n",
         {},
         joinedOnce},
        {"a position",
         "v 0 0 0\nv 1 0 0\nv 0 \\\n1 0\nf 1 2 3\n",
         {},
         Triangle + "f 1 2 3\n",
         {},
         {"model.obj:3 line-continued  1"}},
    });
}

TEST(TextRepair, JoinsContinuedLinesOfLibraries)
{
    const QByteArray rest = Triangle + "usemtl a\nf 1 2 3\n";
    const QByteArray model = "mtllib p.mtl\n" + rest;
    const QByteArray fixed = "mtllib fixed.mtl\n" + rest;
    const std::vector<std::string> joined = {"p.mtl:2 line-continued  1"};
    const auto library = [](const QByteArray &lines) {
        return std::vector<OrvTest::RowFile>{{"p.mtl", "newmtl a\n" + lines}};
    };
    expectRows({
        {"colour", model, library("Kd 1 0 \\\n.5\n"), fixed, "newmtl a\nKd 1 0 .5\n", joined},
        {"without a blank", model, library("Kd 1 0\\\n1\n"), fixed, "newmtl a\nKd 1 0 1\n", joined},
        {"thrice",
         model,
         library("Kd \\\n1 \\\n0 \\\n1\nd 1\n"),
         fixed,
         "newmtl a\nKd 1 0 1\nd 1\n",
         {"p.mtl:2 line-continued  3"}},
        {"with a decimal comma",
         model,
         library("Kd 1 \\\n0,5 0\n"),
         fixed,
         "newmtl a\nKd 1 0.5 0\n",
         {"p.mtl:2 line-continued  1", "p.mtl:2 number-decimal-comma Kd 1"}},
        {"opacity, before a transparency that it replaces", model, library("d 0.5\\\nTr 0.5\n"),
         fixed, "newmtl a\nd 0.5\nTr 0.5\n", joined},
        {"a line of its own follows", model, library("Kd 1 0 \\\nKs 0 0 0\n"), fixed,
         "newmtl a\nKd 1 0 \nKs 0 0 0\n", joined},
        {"all numbers are there", model, library("Kd 1 0 0 \\\n1\n"), model, {}, {}},
        {"a comment", model, library("Kd 1 0 # \\\n1\n"), model, {}, {}},
        {"a path", model, library("map_Bump tex\\\n1\n"), model, {}, {}},
    });
}

TEST(TextRepair, TellsLinesBehindAJoinedOneAsTheyAreInTheFile)
{
    expectRows({{"two joints before a comma",
                 "v 0 0 0\nv 1 0 \\\n0\nv 0 \\\n1 \\\n0\nv 0,5 0 0\nf 1 2 3\n",
                 {},
                 "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0.5 0 0\nf 1 2 3\n",
                 {},
                 {"model.obj:2 line-continued  3", "model.obj:7 number-decimal-comma v 1"}}});
}

TEST(TextRepair, LeavesBackslashesElsewhere)
{
    const QByteArray model = Triangle + "g a \\\nb\n# c \\\nf 1 2 3\n";
    expectRows({{"group and comment", model, {}, model, {}, {}}});
}

TEST(TextRepair, TurnsDecimalCommasIntoPoints)
{
    const QByteArray library = "newmtl a\nKd 0.5 0.5 0.5\n";
    expectRows({
        {"position",
         "v 0,5 -1,25e1 ,5\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
         {},
         "v 0.5 -1.25e1 .5\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
         {},
         {"model.obj:1 number-decimal-comma v 3"}},
        {"the weight goes with it",
         "v 0,5 0 0 1,0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
         {},
         "v 0.5 0 0 1.0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
         {},
         {"model.obj:1 number-decimal-comma v 2"}},
        {"texture coordinate",
         Triangle + "vt 0,5 0\nf 1/1 2/1 3/1\n",
         {},
         Triangle + "vt 0.5 0\nf 1/1 2/1 3/1\n",
         {},
         {"model.obj:4 number-decimal-comma vt 1"}},
        {"several numbers without blanks stay",
         "v 1,2,3\nv 1,0 0 0\nv 0 1 0\nf 1 2 3\n",
         {},
         "v 1,2,3\nv 1.0 0 0\nv 0 1 0\nf 1 2 3\n",
         {},
         {"model.obj:2 number-decimal-comma v 1"}},
        {"comments stay",
         "v 0,5 0 0 # 1,5\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
         {},
         "v 0.5 0 0 # 1,5\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
         {},
         {"model.obj:1 number-decimal-comma v 1"}},
        {"library",
         "mtllib a.mtl\n" + Triangle + "usemtl a\nf 1 2 3\n",
         {{"a.mtl", "newmtl a\nKd 0,5 0.5 0,5\n"}},
         "mtllib fixed.mtl\n" + Triangle + "usemtl a\nf 1 2 3\n",
         library,
         {"a.mtl:2 number-decimal-comma Kd 2"}},
    });
}

TEST(TextRepair, TurnsCarriageReturnsIntoLineFeeds)
{
    QByteArray returns = "# by hand\n" + Triangle + "f 1 2 3\n";
    const QByteArray feeds = returns;
    returns.replace('\n', '\r');
    expectRows({
        {"only returns", returns, {}, feeds, {}, {"model.obj:1 carriage-returns  1"}},
        {"in one line",
         Triangle + "# a\rf 1 2 3\r\n",
         {},
         Triangle + "# a\nf 1 2 3\r\n",
         {},
         {"model.obj:4 carriage-returns  1"}},
        {"in a library",
         "mtllib p.mtl\n" + Triangle + "usemtl a\nf 1 2 3\n",
         {{"p.mtl", "newmtl a\rKd 1 0 0\r"}},
         "mtllib fixed.mtl\n" + Triangle + "usemtl a\nf 1 2 3\n",
         "newmtl a\nKd 1 0 0\n",
         {"p.mtl:1 carriage-returns  1"}},
        {"before a texture, which wants coordinates then",
         "mtllib p.mtl\n" + Triangle + "vt 1 1\nusemtl a\nf 1/1 2 3\n",
         {{"p.mtl", "newmtl a\n# wood\rmap_Kd gone.png\n"}},
         "mtllib fixed.mtl\n" + Triangle + "vt 1 1\nvt 0 0\nusemtl a\nf 1/1 2/2 3/2\n",
         "newmtl a\n# wood\nmap_Kd gone.png\n",
         {"model.obj:7 corner-without-texcoord  2", "p.mtl:2 carriage-returns  1"}},
        {"before a byte that ends a library, which grows",
         "mtllib p.mtl\n" + Triangle + "usemtl b\nf 1 2 3\n",
         {{"p.mtl", "newmtl a\nx \r\r\xFF"}},
         "mtllib fixed.mtl\n" + Triangle + "usemtl b\nf 1 2 3\n",
         "newmtl a\nx \n\n\xFF\nnewmtl b\nKa 0 0 0\nKd 0.7 0.7 0.7\nKs 1 1 1\nNs 10\nd 1\n",
         {"model.obj:5 material-undefined b 1", "p.mtl:2 carriage-returns  1"}},
        {"with nothing but blanks behind it",
         Triangle + "f 1 2 3\r \t\r\n",
         {},
         Triangle + "f 1 2 3\r \t\r\n",
         {},
         {}},
    });
}

TEST(TextRepair, TurnsWideEncodingsIntoUTF8)
{
    const QByteArray text = "# \xC3\xA4\r\n" + Triangle + "f 1 2 3\n";
    expectRows({
        {"UTF-16, little end first",
         encoded("UTF-16LE", text),
         {},
         text,
         {},
         {"model.obj:1 encoding UTF-16LE 1"}},
        {"UTF-16, big end first",
         encoded("UTF-16BE", text),
         {},
         text,
         {},
         {"model.obj:1 encoding UTF-16BE 1"}},
        {"UTF-32", encoded("UTF-32LE", text), {}, text, {}, {"model.obj:1 encoding UTF-32LE 1"}},
    });
}

TEST(TextRepair, KeepsAByteOrderMarkOfUTF8)
{
    const QByteArray mark = "\xEF\xBB\xBF";
    expectRows({{"mark",
                 mark + "v 0,5 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
                 {},
                 mark + "v 0.5 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
                 {},
                 {"model.obj:1 number-decimal-comma v 1"}}});
}

} // namespace
