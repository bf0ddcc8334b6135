// The loader's two paths on the same files: everything on the GPU, every record
// and every message must be the same.
#include "support/BothPaths.h"
#include "support/GLTest.h"
#include "support/ModelFolders.h"
#include "support/TemporaryModel.h"

using namespace OrvTest;

namespace {

class LoaderPathsTest : public GLTest
{};

} // namespace

TEST_F(LoaderPathsTest, AgreeOnEverySample)
{
    const QStringList samples = modelsBelow(QStringLiteral(ORV_SAMPLES_DIR));
    ASSERT_FALSE(samples.isEmpty());
    for (const QString &sample : samples)
        expectSameOnBothPaths(sample);
}

TEST_F(LoaderPathsTest, AgreeOnRealModels)
{
    const QStringList models = modelsBelow(QStringLiteral(ORV_SHARED_MODELS_DIR));
    if (models.isEmpty())
        GTEST_SKIP() << "no folder of real models beside the repository";
    for (const QString &model : models)
        expectSameOnBothPaths(model);
}

TEST_F(LoaderPathsTest, AgreeOnOddFiles)
{
    const std::vector<std::pair<const char *, QByteArray>> files = {
        {"empty", ""},
        {"values without faces", "v 1 2 3\nvn 0 0 1\n"},
        {"faces without values", "f 1 2 3\n"},
        {"values after the faces", "f 1 2 3\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"},
        {"normals after the last face", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nvn 0 0 1\n"},
        {"late normals", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nvn 0 0 1\nf 1//1 2//1 3//1\n"},
        {"wild and absent indices",
         "v 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 1\nf 1 2/9 3/-5\nf -9/1 2147483647/1 0/0\n"},
        {"faces of zero, one and two corners", "v 0 0 0\nf\nf 1\nf 1 1\nf # 1\n"},
        {"faces under an unknown material", "v 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl x\nf 1 2 3\n"},
        {"a missing library", "v 0 0 0\nmtllib nowhere.mtl\n"},
        {"a library without a name", "v 0 0 0\nmtllib\n"},
        {"no end of line", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3"},
        {"carriage returns everywhere", "v 0 0\r 0\r\nv 1\r 0 0\r\nv 0 1 0\r\n\rf 1 2 3\r\n"},
        {"a polygon that crosses itself",
         "v 0 0 0\nv 4 4 0\nv 4 0 0\nv 0 4 0\nv 2 5 0\nv 1 1 0\nf 1 2 3 4 5 6\n"},
        {"UTF-8 with a mark", "\xEF\xBB\xBFv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl \xC3\xA9\nf 1 2 3\n"},
        {"UTF-16", QByteArray("\xFF\xFEv\0 \0001\0 \0002\0 \0003\0\n\0f\0 \0001\0\n\0", 26)},
        {"blanks beyond ASCII", "v\xC2\xA0"
                                "1 2\xE3\x80\x80"
                                "3\nf 1 1 1\n"},
        {"zero bytes", QByteArray("v 1 2 3\0\nf 1 1 1\n", 17)},
        {"numbers of every kind",
         "v 1e3 -.5 +5.\nv inf nan 0x10\nv 1,5 1e 3.4028236e38\nv -0 1e-46 1e400\nf 1 2 3 4\n"}};
    for (const auto &[name, text] : files) {
        SCOPED_TRACE(name);
        TemporaryModel model;
        expectSameOnBothPaths(model.write(QStringLiteral("odd.obj"), text));
    }
}

/// Seen from far away a face's winding test is mostly rounding, and faces turn
/// over; both paths must turn over the same.
TEST_F(LoaderPathsTest, AgreeFarFromTheOrigin)
{
    QByteArray text;
    for (int i = 0; i < 3000; ++i) {
        const int x = 100000 + (i * 7919) % 1000;
        const int y = -70000 + (i * 104729) % 1000;
        const int z = 90000 + (i * 129971) % 1000;
        text += "v " + QByteArray::number(x / 7.0) + ' ' + QByteArray::number(y / 11.0) + ' ' +
                QByteArray::number(z / 13.0) + '\n';
    }
    for (int i = 1; i + 3 <= 3000; ++i) {
        text += "f " + QByteArray::number(i) + ' ' + QByteArray::number(i + 1) + ' ' +
                QByteArray::number(i + 2) +
                (i % 2 ? QByteArray("\n") : ' ' + QByteArray::number(i + 3) + '\n');
    }
    TemporaryModel model;
    expectSameOnBothPaths(model.write(QStringLiteral("far.obj"), text));
}
