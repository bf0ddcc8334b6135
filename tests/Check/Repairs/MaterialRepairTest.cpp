// What is mended of libraries, materials and textures.
#include "support/ScopedLocaleCodec.h"

#include "Check/Repairs/RepairRows.h"

#include <gtest/gtest.h>

namespace {

using OrvTest::expectRows;
using OrvTest::RepairRow;
using OrvTest::RowFile;

const QByteArray Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
const QByteArray Face = "f 1 2 3\n";
const QByteArray Red = "newmtl red\nKd 1 0 0\n";

/// A definition in the colours of the default material.
QByteArray defaultMaterial(const QByteArray &name)
{
    return "newmtl " + name + "\nKa 0 0 0\nKd 0.7 0.7 0.7\nKs 1 1 1\nNs 10\nd 1\n";
}

TEST(MaterialRepair, DefinesMissingMaterials)
{
    const QByteArray twice = Triangle + "usemtl a\n" + Face + "usemtl b\n" + Face + "usemtl a\n";
    expectRows({
        {"no library",
         twice + Face,
         {},
         Triangle + "mtllib fixed.mtl\n" + twice.mid(Triangle.size()) + Face,
         defaultMaterial("a") + defaultMaterial("b"),
         {"model.obj:4 material-undefined a 1", "model.obj:6 material-undefined b 1"}},
        {"a library without it",
         "mtllib p.mtl\n" + Triangle + "usemtl a\n" + Face,
         {{"p.mtl", Red}},
         "mtllib fixed.mtl\n" + Triangle + "usemtl a\n" + Face,
         Red + defaultMaterial("a"),
         {"model.obj:5 material-undefined a 1"}},
        {"a library without it that ends in the middle of a line",
         "mtllib p.mtl\n" + Triangle + "usemtl a\n" + Face,
         {{"p.mtl", "newmtl red\nKd 1 0 0"}},
         "mtllib fixed.mtl\n" + Triangle + "usemtl a\n" + Face,
         Red + defaultMaterial("a"),
         {"model.obj:5 material-undefined a 1"}},
        {"a library that comes too late for it",
         Triangle + "usemtl a\n" + Face + "mtllib p.mtl\nusemtl red\n" + Face,
         {{"p.mtl", Red}},
         Triangle + "mtllib fixed.mtl\nusemtl a\n" + Face + "mtllib p.mtl\nusemtl red\n" + Face,
         defaultMaterial("a"),
         {"model.obj:4 material-undefined a 1"}},
        {"a name that no library can define",
         Triangle + "usemtl a#b\n" + Face,
         {},
         Triangle + "mtllib fixed.mtl\nusemtl a_b\n" + Face,
         defaultMaterial("a_b"),
         {"model.obj:4 material-undefined a#b 1", "model.obj:4 material-undefined a_b 1"}},
        {"letters beyond ASCII",
         Triangle + "usemtl \xC3\xA4\n" + Face,
         {},
         Triangle + "mtllib fixed.mtl\nusemtl \xC3\xA4\n" + Face,
         defaultMaterial("\xC3\xA4"),
         {"model.obj:4 material-undefined \xC3\xA4 1"}},
        {"told where it is selected for a face",
         Triangle + "usemtl a\nl 1 2\nusemtl a\n" + Face,
         {},
         Triangle + "mtllib fixed.mtl\nusemtl a\nl 1 2\nusemtl a\n" + Face,
         defaultMaterial("a"),
         {"model.obj:6 material-undefined a 1"}},
        {"without faces it is not missed",
         Triangle + Face + "usemtl a\n",
         {},
         Triangle + Face + "usemtl a\n",
         {},
         {}},
    });
}

/// The library is in the locale's encoding, and the new one has a mark.
TEST(MaterialRepair, DefinesWhatALibrarysEncodingCannotWriteInAnother)
{
    const OrvTest::ScopedLocaleCodec latin("ISO-8859-15");
    const QByteArray mark = "\xEF\xBB\xBF";
    const QByteArray rest = "usemtl \xE9\x9D\x92\n" + Face; // a letter of Chinese
    expectRows({
        {"beside a library of few letters",
         mark + "mtllib p.mtl\n" + Triangle + rest,
         {{"p.mtl", Red}},
         mark + "mtllib p.mtl\n" + Triangle + "mtllib fixed.mtl\n" + rest,
         mark + defaultMaterial("\xE9\x9D\x92"),
         {"model.obj:5 material-undefined \xE9\x9D\x92 1"}},
        {"in a library of all letters",
         mark + "mtllib p.mtl\n" + Triangle + rest,
         {{"p.mtl", mark + Red}},
         mark + "mtllib fixed.mtl\n" + Triangle + rest,
         mark + Red + defaultMaterial("\xE9\x9D\x92"),
         {"model.obj:5 material-undefined \xE9\x9D\x92 1"}},
    });
}

TEST(MaterialRepair, RenamesMaterialsInBothFiles)
{
    const QByteArray head = "mtllib p.mtl\n" + Triangle;
    const QByteArray fixedHead = "mtllib fixed.mtl\n" + Triangle;
    expectRows({
        {"a blank",
         head + "usemtl  red paint \n" + Face,
         {{"p.mtl", "newmtl red paint\nKd 1 0 0\n"}},
         fixedHead + "usemtl  red_paint \n" + Face,
         "newmtl red_paint\nKd 1 0 0\n",
         {"model.obj:5 name-cut-at-blank red paint 1", "p.mtl:1 name-cut-at-blank red paint 1"}},
        {"other blanks are the same name",
         head + "usemtl red \t paint\n" + Face,
         {{"p.mtl", "newmtl red  paint # old\n"}},
         fixedHead + "usemtl red_paint\n" + Face,
         "newmtl red_paint # old\n",
         {"model.obj:5 name-cut-at-blank red paint 1", "p.mtl:1 name-cut-at-blank red paint 1"}},
        {"the new name is taken",
         head + "usemtl a b\n" + Face + "usemtl a_b\n" + Face,
         {{"p.mtl", "newmtl a_b\nnewmtl a b\n"}},
         fixedHead + "usemtl a_b_2\n" + Face + "usemtl a_b\n" + Face,
         "newmtl a_b\nnewmtl a_b_2\n",
         {"model.obj:5 name-cut-at-blank a b 1", "p.mtl:2 name-cut-at-blank a b 1"}},
        {"a name that the loader cuts, used by its first word",
         head + "usemtl red\n" + Face,
         {{"p.mtl", "newmtl red paint\n"}},
         fixedHead + "usemtl red_paint\n" + Face,
         "newmtl red_paint\n",
         {"model.obj:5 material-undefined red 1", "p.mtl:1 name-cut-at-blank red paint 1"}},
        {"more than the name of a material that is there",
         head + "usemtl red (worn)\n" + Face,
         {{"p.mtl", Red}},
         head + "usemtl red\n" + Face,
         {},
         {"model.obj:5 name-cut-at-blank red (worn) 1"}},
        {"a comment is no part of the name",
         head + "usemtl red # worn\n" + Face,
         {{"p.mtl", Red}},
         head + "usemtl red # worn\n" + Face,
         {},
         {}},
        {"no name",
         head + "usemtl\n" + Face,
         {{"p.mtl", "newmtl \nKd 1 0 0\n"}},
         fixedHead + "usemtl unnamed\n" + Face,
         "newmtl unnamed \nKd 1 0 0\n",
         {"model.obj:5 material-empty-name  1", "p.mtl:1 material-empty-name  1"}},
        {"a comment for a name",
         head + "usemtl # red\n" + Face,
         {{"p.mtl", Red}},
         fixedHead + "usemtl _ # red\n" + Face,
         Red + defaultMaterial("_"),
         {"model.obj:5 material-undefined # 1", "model.obj:5 material-undefined _ 1"}},
    });
}

TEST(MaterialRepair, PutsLibraryLinesRight)
{
    const QByteArray uses = Triangle + "usemtl red\n" + Face;
    const QByteArray blue = "newmtl blue\n";
    expectRows({
        {"several on a line",
         "mtllib p.mtl q.mtl # both\n" + uses,
         {{"p.mtl", Red}, {"q.mtl", blue}},
         "mtllib p.mtl\nmtllib q.mtl # both\n" + uses,
         {},
         {"model.obj:1 library-further-names p.mtl q.mtl 1"}},
        {"several, and one is not there",
         "mtllib p.mtl gone.mtl q.mtl\n" + uses,
         {{"p.mtl", Red}, {"q.mtl", blue}},
         "mtllib p.mtl\nmtllib q.mtl\n# mtllib gone.mtl\n" + uses,
         {},
         {"model.obj:1 library-further-names p.mtl gone.mtl q.mtl 1"}},
        {"the first is not there",
         "mtllib gone.mtl p.mtl\n" + uses,
         {{"p.mtl", Red}},
         "mtllib p.mtl\n# mtllib gone.mtl\n" + uses,
         {},
         {"model.obj:1 library-further-names gone.mtl p.mtl 1",
          "model.obj:1 library-missing gone.mtl 1"}},
        {"too late",
         uses + "mtllib p.mtl",
         {{"p.mtl", Red}},
         Triangle + "mtllib p.mtl\nusemtl red\n" + Face,
         {},
         {"model.obj:6 library-late p.mtl 1"}},
        {"too late, and those between keep their order",
         Triangle + "usemtl blue\nmtllib q.mtl\n" + Face + "mtllib p.mtl\nusemtl red\n" + Face +
             "usemtl red\n",
         {{"p.mtl", Red}, {"q.mtl", blue}},
         Triangle + "usemtl blue\nmtllib q.mtl\n" + Face + "mtllib p.mtl\nusemtl red\n" + Face +
             "usemtl red\n",
         {},
         {}},
        {"two too late",
         uses + "usemtl blue\n" + Face + "mtllib p.mtl\nmtllib q.mtl\n",
         {{"p.mtl", Red}, {"q.mtl", blue}},
         Triangle + "mtllib p.mtl\nmtllib q.mtl\nusemtl red\n" + Face + "usemtl blue\n" + Face,
         {},
         {"model.obj:8 library-late p.mtl 1", "model.obj:9 library-late q.mtl 1"}},
        {"not there",
         "mtllib gone.mtl\n" + Triangle + Face,
         {},
         "# mtllib gone.mtl\n" + Triangle + Face,
         {},
         {"model.obj:1 library-missing gone.mtl 1"}},
        {"not there, and missed",
         "mtllib gone.mtl\n" + uses,
         {},
         "# mtllib gone.mtl\n" + Triangle + "mtllib fixed.mtl\nusemtl red\n" + Face,
         defaultMaterial("red"),
         {"model.obj:1 library-missing gone.mtl 1", "model.obj:5 material-undefined red 1"}},
        {"no name",
         "mtllib\n" + Triangle + Face,
         {},
         "# mtllib\n" + Triangle + Face,
         {},
         {"model.obj:1 library-missing  1"}},
        {"another case",
         "mtllib P.MTL\n" + uses,
         {{"p.mtl", Red}},
         "mtllib p.mtl\n" + uses,
         {},
         {"model.obj:1 library-missing P.MTL 1"}},
        {"another suffix",
         "mtllib p.mat\n" + uses,
         {{"p.mtl", Red}},
         "mtllib p.mtl\n" + uses,
         {},
         {"model.obj:1 library-missing p.mat 1"}},
        {"a backslash",
         "mtllib lib\\p.mtl\n" + uses,
         {{"lib/p.mtl", Red}},
         "mtllib lib/p.mtl\n" + uses,
         {},
         {"model.obj:1 library-missing lib\\p.mtl 1"}},
        {"a blank",
         "mtllib my paint.mtl\n" + uses,
         {{"my paint.mtl", Red}},
         "mtllib fixed.mtl\n" + uses,
         Red,
         {"model.obj:1 name-cut-at-blank my paint.mtl 1", "my paint.mtl:1 library-copied  1"}},
        {"in a folder, and changed",
         "mtllib lib/p.mtl\n" + Triangle + "usemtl red\n" + Face,
         {{"lib/p.mtl", "newmtl red\nTr 0.5\nmap_Kd t.png\nmap_Bump -bm 2 b.png\n"},
          {"lib/t.png", {}}},
         "mtllib fixed.mtl\n" + Triangle + "usemtl red\n" + Face,
         "newmtl red\nd 0.5\nmap_Kd lib/t.png\nmap_Bump -bm 2 lib/b.png\n",
         {"p.mtl:2 opacity-inverted  1"}},
    });
}

TEST(MaterialRepair, TurnsTransparencyIntoOpacity)
{
    const QByteArray model = "mtllib p.mtl\n" + Triangle + "usemtl a\n" + Face;
    const QByteArray fixed = "mtllib fixed.mtl\n" + Triangle + "usemtl a\n" + Face;
    expectRows({
        {"without d",
         model,
         {{"p.mtl", "newmtl a\n Tr  0.3 # glass\n"}},
         fixed,
         "newmtl a\n d  0.7 # glass\n",
         {"p.mtl:2 opacity-inverted  1"}},
        {"with d", model, {{"p.mtl", "newmtl a\nTr 0.3\nd 0.5\n"}}, model, {}, {}},
        {"0", model, {{"p.mtl", "newmtl a\nTr 0\n"}}, model, {}, {}},
        {"1, which many write for opaque", model, {{"p.mtl", "newmtl a\nTr 1\n"}}, model, {}, {}},
        {"before the first material, whose it is not",
         model,
         {{"p.mtl", "Tr 0.5\nnewmtl a\n"}},
         model,
         {},
         {}},
        {"each material for itself",
         model,
         {{"p.mtl", "newmtl a\nTr 0.25\nnewmtl b\nd 1\nTr 0.5\n"}},
         fixed,
         "newmtl a\nd 0.75\nnewmtl b\nd 1\nTr 0.5\n",
         {"p.mtl:2 opacity-inverted  1"}},
    });
}

TEST(MaterialRepair, PutsPathsOfTexturesRight)
{
    const QByteArray model = "mtllib p.mtl\n" + Triangle + "usemtl a\n" + Face;
    const QByteArray fixed = "mtllib fixed.mtl\n" + Triangle + "usemtl a\n" + Face;
    const auto library = [](const QByteArray &path) -> QByteArray {
        return "newmtl a\nmap_Kd " + path + "\n";
    };
    const RowFile texture{"tex/wood.png", {}};
    expectRows({
        {"backslash",
         model,
         {{"p.mtl", library("tex\\wood.png # a")}, texture},
         fixed,
         library("tex/wood.png # a"),
         {"p.mtl:2 texture-path-backslash tex\\wood.png 1"}},
        {"a path of another system, file beside the library",
         model,
         {{"p.mtl", library("C:\\art\\wood.png")}, {"wood.png", {}}},
         fixed,
         library("wood.png"),
         {"p.mtl:2 texture-path-backslash C:\\art\\wood.png 1"}},
        {"case",
         model,
         {{"p.mtl", library("TEX/Wood.png")}, texture},
         fixed,
         library("tex/wood.png"),
         {"p.mtl:2 texture-path-case TEX/Wood.png 1"}},
        {"options",
         model,
         {{"p.mtl", library("-s 2 2 -clamp on -bm 0.5 tex/wood.png")}, texture},
         fixed,
         library("tex/wood.png"),
         {"p.mtl:2 texture-options -s 2 2 -clamp on -bm 0.5 tex/wood.png 1"}},
        {"options and a backslash",
         model,
         {{"p.mtl", library("-o 1 0 0 Tex\\WOOD.png")}, texture},
         fixed,
         library("tex/wood.png"),
         {"p.mtl:2 texture-options -o 1 0 0 Tex\\WOOD.png 1",
          "p.mtl:2 texture-path-backslash -o 1 0 0 Tex\\WOOD.png 1"}},
        {"options without a path",
         model,
         {{"p.mtl", library("-s 1 1 1")}},
         fixed,
         "newmtl a\n# map_Kd -s 1 1 1\n",
         {"p.mtl:2 texture-options -s 1 1 1 1"}},
        {"a file that is nowhere", model, {{"p.mtl", library("tex\\gone.png")}}, model, {}, {}},
        {"a blank in the name",
         model,
         {{"p.mtl", library("my wood.png")}, {"my wood.png", {}}},
         model,
         {},
         {}},
    });
}

} // namespace
