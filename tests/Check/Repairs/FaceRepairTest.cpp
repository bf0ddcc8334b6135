// What is mended of attributes and faces.
#include "Check/Repairs/RepairRows.h"

#include <gtest/gtest.h>

namespace {

using OrvTest::expectRows;
using OrvTest::RepairRow;

const QByteArray Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
/// Cut from its second to its fourth corner it is whole, and from its first to its third one not.
const QByteArray Dart = "v 2 0 0\nv -1 1 0\nv 0 0 0\nv -1 -1 0\n";

TEST(FaceRepair, MovesTheFirstLineOfALateAttribute)
{
    expectRows({
        {"texture coordinates",
         Triangle + "f 1 2 3\nvt 0 0\nvt 1 1\nf 1/1 2/2 3/2\n",
         {},
         Triangle + "vt 0 0\nf 1 2 3\nvt 1 1\nf 1/1 2/2 3/2\n",
         {},
         {"model.obj:5 attribute-begins-late vt 1"}},
        {"normals behind the last face",
         Triangle + "f 1//1 2//1 3//1\nvn 0 0 1",
         {},
         Triangle + "vn 0 0 1\nf 1//1 2//1 3//1\n",
         {},
         {"model.obj:5 attribute-after-faces vn 1"}},
        {"positions, with indices that count back",
         "f 1 2 3\n" + Triangle + "f -3 -2 -1\n",
         {},
         "v 0 0 0\nf 1 2 3\nv 1 0 0\nv 0 1 0\nf -3 -2 -1\n",
         {},
         {"model.obj:2 attribute-begins-late v 1"}},
        {"a position that counted back to nothing still does",
         "f -1 2 3\n" + Triangle + "f 1 2 3\n",
         {},
         "v 0 0 0\nf -2 2 3\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
         {},
         {"model.obj:2 attribute-begins-late v 1"}},
        {"one that counts back too far to be led further",
         "f -1 2 -2147483648\n" + Triangle,
         {},
         "v 0 0 0\nf -2 2 -2147483648\nv 1 0 0\nv 0 1 0\n",
         {},
         {"model.obj:2 attribute-after-faces v 1"}},
        {"one that counted back to nothing gets zeros",
         Triangle + "f 1 2 3\nf 1/-1 2/-1 3/-1\nvt 1 1\n",
         {},
         Triangle + "vt 1 1\nvt 0 0\nf 1 2 3\nf 1/2 2/2 3/2\n",
         {},
         {"model.obj:5 corner-without-texcoord  3", "model.obj:6 attribute-after-faces vt 1"}},
    });
}

TEST(FaceRepair, TurnsUnusedNormalsIntoComments)
{
    expectRows({
        {"before",
         Triangle + "vn 0 0 1\n vn 1 0 0\nf 1 2 3\n",
         {},
         Triangle + "# vn 0 0 1\n#  vn 1 0 0\nf 1 2 3\n",
         {},
         {"model.obj:4 normals-unused  2"}},
        {"behind all faces",
         Triangle + "f 1 2 3\nvn 0 0 1",
         {},
         Triangle + "f 1 2 3\n# vn 0 0 1",
         {},
         {"model.obj:5 normals-unused  1"}},
    });
}

// Corners 1, 2, 3 run counter-clockwise seen from +z: their normal is 0 0 1.
TEST(FaceRepair, GivesCornersTheNormalOfTheirFace)
{
    expectRows({
        {"a face of its own",
         Triangle + "vn 1 0 0\nf 1//1 2//1 3//1\nf 1 2 3\n",
         {},
         Triangle + "vn 1 0 0\nvn 0 0 1\nf 1//1 2//1 3//1\nf 1//2 2//2 3//2\n",
         {},
         {"model.obj:6 corner-without-normal  3"}},
        {"one corner of three",
         Triangle + "vn 1 0 0\nf 1//1 2//1 3\n",
         {},
         Triangle + "vn 1 0 0\nvn 0 0 1\nf 1//1 2//1 3//2\n",
         {},
         {"model.obj:5 corner-without-normal  1"}},
        {"an index beyond the file",
         Triangle + "vn 1 0 0\nf 1//1 2//1 3//7\n",
         {},
         Triangle + "vn 1 0 0\nvn 0 0 1\nf 1//1 2//1 3//2\n",
         {},
         {"model.obj:5 corner-without-normal  1"}},
        {"texture coordinates stay",
         Triangle + "vt 0 0\nvn 1 0 0\nf 1/1/1 2/1 3/1/1\n",
         {},
         Triangle + "vt 0 0\nvn 1 0 0\nvn 0 0 1\nf 1/1/1 2/1/2 3/1/1\n",
         {},
         {"model.obj:6 corner-without-normal  1"}},
        {"equal normals once, two sides",
         Triangle + "vn 1 0 0\nf 1//1 2//1 3//1\nf 1 2 3\nf 3 2 1\nf 2 3 1\n",
         {},
         Triangle + "vn 1 0 0\nvn 0 0 1\nvn 0 0 -1\nf 1//1 2//1 3//1\nf 1//2 2//2 3//2\n"
                    "f 3//3 2//3 1//3\nf 2//2 3//2 1//2\n",
         {},
         {"model.obj:6 corner-without-normal  9"}},
        {"indices that count back",
         Triangle + "vn 1 0 0\nf 1//-1 2//-1 3//-1\nf 1 2 3\n",
         {},
         Triangle + "vn 1 0 0\nvn 0 0 1\nf 1//-2 2//-2 3//-2\nf 1//2 2//2 3//2\n",
         {},
         {"model.obj:6 corner-without-normal  3"}},
        {"a last line without a line feed",
         Triangle + "f 1//1 2//1 3\nvn 1 0 0",
         {},
         Triangle + "vn 1 0 0\nvn 0 0 1\nf 1//1 2//1 3//2\n",
         {},
         {"model.obj:4 corner-without-normal  1", "model.obj:5 attribute-after-faces vn 1"}},
        // (1,0,0) x (0,3,4) = (0,-4,3), of length 5
        {"a slanted face",
         "v 0 0 0\nv 1 0 0\nv 0 3 4\nvn 1 0 0\nf 1//1 2//1 3\n",
         {},
         "v 0 0 0\nv 1 0 0\nv 0 3 4\nvn 1 0 0\nvn 0 -0.8 0.6\nf 1//1 2//1 3//2\n",
         {},
         {"model.obj:5 corner-without-normal  1"}},
        {"a face without a side",
         "v 0 0 0\nv 1 0 0\nv 2 0 0\nvn 1 0 0\nf 1//1 2//1 3\n",
         {},
         "v 0 0 0\nv 1 0 0\nv 2 0 0\nvn 1 0 0\nvn 0 0 1\nf 1//1 2//1 3//2\n",
         {},
         {"model.obj:5 corner-without-normal  1"}},
        {"the file's line ends",
         "v 0 0 0\r\nv 1 0 0\r\nv 0 1 0\r\nvn 1 0 0\r\nf 1//1 2//1 3\r\n",
         {},
         "v 0 0 0\r\nv 1 0 0\r\nv 0 1 0\r\nvn 1 0 0\r\nvn 0 0 1\r\nf 1//1 2//1 3//2\r\n",
         {},
         {"model.obj:5 corner-without-normal  1"}},
    });
}

TEST(FaceRepair, GivesCornersOfTexturedFacesATextureCoordinate)
{
    const QByteArray head = "mtllib a.mtl\n" + Triangle;
    const std::vector<OrvTest::RowFile> textured = {{"a.mtl", "newmtl a\nmap_Kd t.png\n"},
                                                    {"t.png", {}}};
    const std::vector<OrvTest::RowFile> plain = {{"a.mtl", "newmtl a\n"}};
    const QByteArray model = head + "vt 1 1\nusemtl a\nf 1/1 2/1 3/1\nf 1 2 3\n";
    expectRows({
        {"textured",
         model,
         textured,
         head + "vt 1 1\nvt 0 0\nusemtl a\nf 1/1 2/1 3/1\nf 1/2 2/2 3/2\n",
         {},
         {"model.obj:8 corner-without-texcoord  3"}},
        {"not textured", model, plain, model, {}, {}},
        {"an index beyond the file, not textured",
         head + "vt 1 1\nusemtl a\nf 1/1 2/1 3/9\nf 1 2 3\n",
         plain,
         head + "vt 1 1\nvt 0 0\nusemtl a\nf 1/1 2/1 3/2\nf 1 2 3\n",
         {},
         {"model.obj:7 corner-without-texcoord  1"}},
        {"normals stay",
         head + "vt 1 1\nvn 0 0 1\nusemtl a\nf 1/1/1 2//1 3/1/1\n",
         textured,
         head + "vt 1 1\nvt 0 0\nvn 0 0 1\nusemtl a\nf 1/1/1 2/2/1 3/1/1\n",
         {},
         {"model.obj:8 corner-without-texcoord  1"}},
    });
}

TEST(FaceRepair, SplitsQuadsTheOtherWay)
{
    const std::vector<std::string> turned = {"model.obj:5 quad-split-wrongly  1"};
    const QByteArray whole = Dart + "f 2 3 4 1\n";
    expectRows({
        {"concave at the third corner", Dart + "f 1 2 3 4\n", {}, whole, {}, turned},
        {"concave at the first corner", Dart + "f 3 4 1 2\n", {}, Dart + "f 4 1 2 3\n", {}, turned},
        {"blanks and comments stay",
         Dart + "f  1 2\t3   4 # dart\n",
         {},
         Dart + "f  2 3\t4   1 # dart\n",
         {},
         turned},
        {"whole as it is", whole, {}, whole, {}, {}},
        {"with normals",
         Dart + "vn 0 0 1\nf 1//-1 2//-1 3//-1 4//-1\n",
         {},
         Dart + "vn 0 0 1\nf 2//-1 3//-1 4//-1 1//-1\n",
         {},
         {"model.obj:6 quad-split-wrongly  1"}},
        {"only once its positions are read well",
         "v 2 0 0\nv -1,0 1 0\nv 0 0 0\nv -1 -1 0\nf 1 2 3 4\n",
         {},
         "v 2 0 0\nv -1.0 1 0\nv 0 0 0\nv -1 -1 0\nf 2 3 4 1\n",
         {},
         {"model.obj:2 number-decimal-comma v 1", "model.obj:5 quad-split-wrongly  1"}},
    });
}

TEST(FaceRepair, LeavesWhatHasNoSureRemedy)
{
    const std::vector<QByteArray> models = {
        Triangle + "f 1 2 9\n",          // no such position
        Triangle + "f 1 2\nf 1 2 3\n",   // too few corners
        Triangle + "f 1 2 x\nf 1 2 3\n", // no corner
        "v a 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
        "v 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n",
        Triangle + "f 1/1/1 2/2/2 3/3/3\n", // neither normals nor texture coordinates
        Triangle + "vt 0 0\nf 1 2 3\n",     // texture coordinates that nothing selects
    };
    for (const QByteArray &model : models)
        expectRows({{"model", model, {}, model, {}, {}}});
}

} // namespace
