#include "support/GLTest.h"
#include "support/LoadedOBJ.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <OrvModel/MTLReader.h>
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>
#include <OrvModel/OBJReader.h>

#include <QtCore/QBuffer>
#include <QtCore/QTextStream>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

/// Everything that a line can be, so that a file ends in the middle of each.
const QByteArray EveryLine = //
    "# a model\n"
    "mtllib m.mtl\n"
    "o thing\n"
    "v 1.5 -2.25 3e-1\n"
    "v\t2 .5 1.\r\n"
    "v 1e400 -nan inf\n"
    "v 4 5\n"
    "vt 0.5 0.25 1\n"
    "vt -1\n"
    "vn 0 0 1\n"
    "usemtl red\n"
    "f 1/1/1 2/2/1 3/1/1 4/2/1\n"
    "usemtl none\n"
    "f -1 -2 -3\n"
    "usemtl\n"
    "f\n"
    "usemtl <default>\n"
    "f 1 2 3 4 1 2 3 4\n"
    "f 1//1 2//1 3//1 # end\n"
    "f -9 99 2147483647\n"
    "v 7 8 9\n"
    "f 0/0/0 1/-3/-3 5\n"
    "f 1/2/3/4 x\n"
    "v \xe2\x88\x92"
    "5 \xc2\xa0"
    "6 7\n"
    "f 1 2 3";

/// Values that come after the first faces, and faces before the first position.
const QByteArray LateLines = //
    "f 1 2 3\n"
    "v 1 0 0\nv 2 0 0\nv 2 1 0\n"
    "f 1/1/1 2/1/1 3/1/1\n"
    "vn 0 0 1\n"
    "f 1//1 2//1 3//1\n"
    "vt 5 6\n"
    "f 1/1/1 2/1/1 3/1/1 1 2 3 1\n";

const QByteArray Library = //
    "# materials\n"
    "Kd 1 1 1\n"
    "newmtl red\n"
    "Ka 0.1 .2 3e-1\n"
    "Kd 1 0 0 # red\n"
    "Ks 1-2 3\n"
    "Ns 10abc\r\n"
    "d 0.5\n"
    "map_Kd tex/wood.png\n"
    "illum 2\n"
    "newmtl\n"
    "map_Ks -s 1 1 1 a.png\n"
    "map_Ka a#b.png\n"
    "map_Ns /x.png\n"
    "newmtl red\n"
    "Kd 1e400 x\n"
    "newmtl blue";

class SamplePrefix : public GLTest
{
protected:
    TemporaryModel _directory;
};

/// What any model has to be, whatever the file: nothing reaches beyond anything.
void expectSound(const LoadedOBJ &loaded)
{
    ASSERT_TRUE(loaded.isModel());
    EXPECT_EQ(loaded.errorMessage(), UploadedModel::untouchedError());
    for (const unsigned vertex : loaded.indices())
        ASSERT_LT(vertex, loaded.vertexCount());
    std::size_t drawn = 0;
    for (const Drawn &one : loaded.drawn()) {
        drawn += one.indices.size();
        EXPECT_EQ(one.indices.size() % 3, 0u);
    }
    EXPECT_EQ(drawn, loaded.indices().size());
}

TEST_F(SamplePrefix, OfAModelIsLoaded)
{
    for (const QByteArray &text : {EveryLine, LateLines}) {
        int empty = 0;
        int missing = 0;
        for (int length = 0; length <= text.size(); ++length) {
            SCOPED_TRACE(length);
            _directory.write(QStringLiteral("m.mtl"), Library);
            const LoadedOBJ loaded(
                _directory.write(QStringLiteral("model.obj"), text.left(length)));
            // A library's name cut short is the name of no file, and no name that of a
            // directory.
            if (!loaded.isModel())
                ++missing;
            else
                expectSound(loaded);
            empty += loaded.isEmpty() ? 1 : 0;
        }
        EXPECT_EQ(missing, text == EveryLine ? int(qstrlen(" m.mtl")) : 0);
        EXPECT_LT(empty, text.size() * 2 / 3);
    }
}

TEST_F(SamplePrefix, OfALibraryIsLoaded)
{
    const QString model = _directory.write(
        QStringLiteral("model.obj"),
        "mtllib m.mtl\nv 1 0 0\nv 2 0 0\nv 2 1 0\nusemtl red\nf 1 2 3\nusemtl blue\nf 3 2 1\n");
    for (int length = 0; length <= Library.size(); ++length) {
        SCOPED_TRACE(length);
        _directory.write(QStringLiteral("m.mtl"), Library.left(length));
        const LoadedOBJ loaded(model);
        expectSound(loaded);
        const bool knowsRed = length >= Library.indexOf("newmtl red") + 10;
        EXPECT_EQ(loaded.drawn().size(),
                  (knowsRed ? 1u : 0u) + (length == Library.size() ? 1u : 0u));
    }
}

/// Without an end of line, a buffer's end is the file's.
TEST_F(SamplePrefix, IsReadFromMemory)
{
    for (const QByteArray &text : {EveryLine, LateLines, Library}) {
        for (int length = 0; length <= text.size(); ++length) {
            // Of exactly that size, so that a look beyond it shows.
            QByteArray bytes(text.constData(), length);
            QBuffer buffer(&bytes);
            buffer.open(QIODevice::ReadOnly | QIODevice::Text);
            QTextStream stream(&buffer);
            int lines = 0;
            for (OBJReader reader(stream); reader.valid(); reader.next())
                lines += reader.parseLine() ? 1 : 0;
            stream.seek(0);
            MTLReader reader(stream, length % 2 == 0);
            for (; reader.valid(); reader.next())
                lines += reader.parseLine() ? 1 : 0;
            EXPECT_LE(lines, 2 * text.count('\n') + 2);
        }
    }
}

} // namespace
