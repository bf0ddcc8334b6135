// Files that change while they are shown.
#include "WindowTest.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QStatusBar>

namespace {

using namespace OrvTest;
using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;

const QByteArray Square = "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\nvt 0 0\n";

QByteArray coloured(const QByteArray &material)
{
    return "mtllib m.mtl\n" + Square + "usemtl " + material + "\nf 1/1 2/1 3/1 4/1\n";
}

class ReloadTest : public WindowTest
{
protected:
    ReloadTest()
    {
        writeTexture(Qt::blue);
        files.write(QStringLiteral("m.mtl"), library("1 0 0"));
        openModel(coloured("plain"));
        showPlainly();
    }

    static QByteArray library(const QByteArray &colour)
    {
        return "newmtl plain\nKd " + colour + "\nnewmtl textured\nmap_Kd t.png\n";
    }

    void writeTexture(const QColor &colour) const
    {
        QImage image(2, 2, QImage::Format_RGB32);
        image.fill(colour);
        ASSERT_TRUE(image.save(files.path(QStringLiteral("t.png"))));
    }

    QString write(const QByteArray &contents) const
    {
        return files.write(QStringLiteral("model.obj"), contents);
    }

    /// 'r', 'g' or 'b'; '?' where it is none of them.
    char colour()
    {
        const QColor seen = seenAt(0.5, 0.5);
        const int parts[] = {seen.red(), seen.green(), seen.blue()};
        for (int i = 0; i < 3; ++i) {
            if (parts[i] > 100 && parts[(i + 1) % 3] < 20 && parts[(i + 2) % 3] < 20)
                return "rgb"[i];
        }
        return '?';
    }
};

TEST_F(ReloadTest, AChangedLibraryIsReadAgainFromTheSameCamera)
{
    QTest::keyClick(&viewport(), Qt::Key_Left);
    const Render::ViewPose before = viewport().camera().pose();
    EXPECT_EQ(colour(), 'r');
    showsAfter([&] { files.write(QStringLiteral("m.mtl"), library("0 1 0")); });
    EXPECT_EQ(colour(), 'g');
    const Render::ViewPose after = viewport().camera().pose();
    EXPECT_EQ(after.angles.azimuth, before.angles.azimuth);
    EXPECT_EQ(after.target.x, before.target.x);
    EXPECT_EQ(after.distance, before.distance);
}

TEST_F(ReloadTest, AChangedTextureIsReadAgain)
{
    showsAfter([&] { write(coloured("textured")); });
    EXPECT_EQ(colour(), 'b');
    showsAfter([&] { writeTexture(Qt::red); });
    EXPECT_EQ(colour(), 'r');
}

TEST_F(ReloadTest, ATextureThatWasMissingIsFoundWhenItComes)
{
    QFile::remove(files.path(QStringLiteral("t.png")));
    showsAfter([&] { write(coloured("textured")); });
    EXPECT_EQ(colour(), '?'); // white
    showsAfter([&] { writeTexture(Qt::blue); });
    EXPECT_EQ(colour(), 'b');
}

TEST_F(ReloadTest, AFileThatIsReplacedIsReadAgainAndAgain)
{
    // As many programs save: another file takes the name.
    for (const char *material : {"textured", "plain", "textured"}) {
        showsAfter([&] {
            const QString other = files.write(QStringLiteral("model.obj.new"), coloured(material));
            ASSERT_EQ(
                std::rename(QFile::encodeName(other).constData(),
                            QFile::encodeName(files.path(QStringLiteral("model.obj"))).constData()),
                0);
        });
        EXPECT_EQ(colour(), material[0] == 't' ? 'b' : 'r');
    }
}

TEST_F(ReloadTest, ASaveThatIsCaughtHalfWayKeepsTheOldPicture)
{
    QSignalSpy shown(&window(), &MainWindow::modelShown);
    const QByteArray whole = coloured("textured");
    QFile file(files.path(QStringLiteral("model.obj")));
    // Emptied, then half a line short, with pauses between.
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QTest::qWait(350);
    EXPECT_EQ(colour(), 'r');
    file.write(whole.left(whole.size() - 10));
    QTest::qWait(350);
    EXPECT_EQ(colour(), 'r');
    EXPECT_EQ(shown.count(), 0);
    showsAfter([&] {
        file.write(whole.right(10));
        file.close();
    });
    EXPECT_EQ(colour(), 'b');
    EXPECT_EQ(shown.count(), 1);
}

TEST_F(ReloadTest, ABrokenSaveKeepsTheOldPictureAndSaysSo)
{
    const std::string sentence = failsAfter([&] { write("Dear reader,\n"); }).toStdString();
    EXPECT_EQ(sentence, "The file has changed, but '" +
                            files.path(QStringLiteral("model.obj")).toStdString() +
                            "' is no OBJ file: none of its lines begins with a keyword of that "
                            "format. The last version is shown until it can be read.");
    EXPECT_EQ(window().statusBar()->currentMessage().toStdString(), sentence);
    EXPECT_EQ(colour(), 'r');
    EXPECT_EQ(notice(), QString());
    showsAfter([&] { write(coloured("textured")); });
    EXPECT_EQ(colour(), 'b');
    EXPECT_EQ(window().statusBar()->currentMessage(), QString());
}

TEST_F(ReloadTest, AnEmptiedFileKeepsTheOldPicture)
{
    EXPECT_THAT(failsAfter([&] { write(""); }).toStdString(),
                ::testing::HasSubstr("there is nothing to draw in it"));
    EXPECT_EQ(colour(), 'r');
}

TEST_F(ReloadTest, AFileThatIsGoneKeepsItsPictureUntilItIsBack)
{
    const QString path = files.path(QStringLiteral("model.obj"));
    QSignalSpy shown(&window(), &MainWindow::modelShown);
    QSignalSpy failed(&window(), &MainWindow::loadFailed);
    ASSERT_TRUE(QFile::remove(path));
    QTest::qWait(600);
    EXPECT_EQ(shown.count() + failed.count(), 0);
    EXPECT_EQ(colour(), 'r');
    showsAfter([&] { write(coloured("textured")); });
    EXPECT_EQ(colour(), 'b');
}

TEST_F(ReloadTest, AFileThatDidNotLoadIsTriedAgainWhenItChanges)
{
    startAgain();
    showPlainly();
    const QString path = files.write(QStringLiteral("late.obj"), "no model\n");
    failsAfter([&] { window().open(path); });
    showsAfter([&] { files.write(QStringLiteral("late.obj"), coloured("plain")); });
    EXPECT_EQ(colour(), 'r');
}

TEST_F(ReloadTest, ReloadIsAKey)
{
    QSignalSpy shown(&window(), &MainWindow::modelShown);
    showsAfter([&] { QTest::keyClick(&window(), Qt::Key_F5); });
    EXPECT_EQ(shown.count(), 1);
    EXPECT_EQ(colour(), 'r');
}

} // namespace
