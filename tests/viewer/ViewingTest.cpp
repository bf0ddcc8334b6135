// What is seen, and from where.
#include "TwoSquares.h"
#include <render/Shading.h>

#include <QtCore/QProcess>
#include <QtGui/QWheelEvent>
#include <QtTest/QTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QStatusBar>

#include <cmath>
#include <viewer/Notice.h>
#include <viewer/ShortcutsSheet.h>

namespace {

using namespace OrvTest;
using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;

class ViewingTest : public TwoSquaresTest
{};

TEST_F(ViewingTest, EachShadingShowsWhatItSays)
{
    const auto press = [this](Qt::Key key, Render::Shading expected) {
        QTest::keyClick(&window(), key);
        EXPECT_EQ(viewport().options().shading, expected);
        EXPECT_TRUE(actions().shadings.at(expected)->isChecked());
    };
    for (const auto &[key, shading] : {std::pair(Qt::Key_M, Render::Shading::Material),
                                       std::pair(Qt::Key_L, Render::Shading::Flat)}) {
        press(key, shading);
        EXPECT_GT(colourOf(red).red(), 150);
        EXPECT_EQ(colourOf(red).blue(), 0);
        EXPECT_GT(colourOf(blue).blue(), 150);
        EXPECT_EQ(colourOf(blue).red(), 0);
    }
    press(Qt::Key_N, Render::Shading::Normals);
    // (0, 0, 1), from -1..1 to 0..255.
    EXPECT_NEAR(colourOf(red).red(), 127.5, 1);
    EXPECT_NEAR(colourOf(red).green(), 127.5, 1);
    EXPECT_EQ(colourOf(red).blue(), 255);

    press(Qt::Key_T, Render::Shading::TextureCoordinates);
    // Eight fields a unit: both places are in the middle of light ones. Redder along u.
    const QColor near = colourOf({0.3125f, 0.3125f, 0});
    const QColor far = colourOf({0.8125f, 0.3125f, 0});
    // Of the pixel's middle, which is not quite the place.
    EXPECT_NEAR(near.red(), near.green(), 2);
    EXPECT_GT(far.red(), far.green() + 30);
    EXPECT_NEAR(far.green(), near.green(), 2);

    press(Qt::Key_C, Render::Shading::Groups);
    const QColor one = colourOf(red);
    const QColor other = colourOf(blue);
    EXPECT_GT(std::abs(one.hue() - other.hue()), 30);

    press(Qt::Key_B, Render::Shading::BackFaces);
    EXPECT_NEAR(colourOf(red).red(), colourOf(red).blue(), 3) << "a light is not quite white";
    viewport().frameModel(180, 0);
    EXPECT_GT(colourOf(red).red(), 3 * colourOf(red).blue());
}

TEST_F(ViewingTest, ThePictureHasThePixelsOfTheScreen)
{
    const int scale = qEnvironmentVariableIntValue("QT_SCALE_FACTOR");
    ASSERT_GE(scale, 1);
    EXPECT_EQ(viewport().devicePixelRatioF(), scale);
    const QImage image = seen();
    EXPECT_EQ(image.size(), viewport().size() * scale);
    // Not one that was made larger: where the squares meet, at most one pixel has both colours.
    int reds = 0, blues = 0, both = 0;
    for (int x = 0; x < image.width(); ++x) {
        const QColor colour = image.pixelColor(x, image.height() / 2);
        reds += colour.red() > 0 && colour.blue() == 0;
        blues += colour.blue() > 0 && colour.red() == 0;
        both += colour.red() > 0 && colour.blue() > 0;
    }
    EXPECT_GT(reds, image.width() / 4);
    EXPECT_GT(blues, image.width() / 4);
    EXPECT_LE(both, 1);
}

TEST_F(ViewingTest, LinesGridAndAxesComeAndGo)
{
    const QImage plain = seen();
    struct
    {
        const char *name;
        Qt::Key key;
    } const rows[] = {{"wireframe", Qt::Key_W}, {"grid", Qt::Key_G}, {"axes", Qt::Key_A}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        QTest::keyClick(&window(), row.key);
        EXPECT_NE(seen(), plain);
        QTest::keyClick(&window(), row.key);
        EXPECT_EQ(seen(), plain);
    }
}

TEST_F(ViewingTest, KeysLookFromStandardSides)
{
    struct
    {
        Qt::Key key;
        double azimuth;
        double elevation;
    } const rows[] = {{Qt::Key_3, 90, 0}, {Qt::Key_7, 0, 90}, {Qt::Key_1, 0, 0}};
    for (const auto &row : rows) {
        drag({31, 17}, Qt::LeftButton);
        QTest::keyClick(&window(), row.key);
        EXPECT_EQ(azimuth(), row.azimuth);
        EXPECT_EQ(viewport().camera().pose().angles.elevation, row.elevation);
        EXPECT_TRUE(viewport().camera().isFramed());
    }
    drag({31, 17}, Qt::LeftButton);
    QTest::keyClick(&window(), Qt::Key_F);
    EXPECT_TRUE(viewport().camera().isFramed());
    EXPECT_NE(azimuth(), 0) << "from where the camera looks";
}

TEST_F(ViewingTest, DraggingTurnsAndTheModelFollows)
{
    const QVector3D rightEdge(2, 0.5f, 0);
    const double before = viewport().camera().seenAt(rightEdge)->x();
    drag({60, 0}, Qt::LeftButton);
    // 180 degrees for the shorter side.
    EXPECT_NEAR(azimuth(), -60.0 * 180 / viewport().height(), 1e-9);
    EXPECT_LT(viewport().camera().seenAt(rightEdge)->x(), before);
    drag({0, 40}, Qt::LeftButton);
    EXPECT_GT(viewport().camera().pose().angles.elevation, 10) << "the top comes down";
}

TEST_F(ViewingTest, OtherButtonsAndKeysMoveAndZoom)
{
    const QVector3D middle(1, 0.5f, 0);
    const QPointF before = *viewport().camera().seenAt(middle);
    struct
    {
        const char *name;
        Qt::MouseButton button;
        Qt::KeyboardModifier key;
    } const rows[] = {{"middle button", Qt::MiddleButton, Qt::NoModifier},
                      {"right button", Qt::RightButton, Qt::NoModifier},
                      {"shift", Qt::LeftButton, Qt::ShiftModifier}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        viewport().frameModel(0, 0);
        drag({40, 25}, row.button, row.key);
        const QPointF after = *viewport().camera().seenAt(middle);
        EXPECT_NEAR(after.x() - before.x(), 40, 0.1);
        EXPECT_NEAR(after.y() - before.y(), 25, 0.1);
    }
    viewport().frameModel(0, 0);
    const double distance = viewport().camera().pose().distance;
    drag({0, -50}, Qt::LeftButton, Qt::ControlModifier);
    EXPECT_LT(viewport().camera().pose().distance, distance);
    QTest::keyClick(&viewport(), Qt::Key_Minus);
    QTest::keyClick(&viewport(), Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_GT(viewport().camera().seenAt(middle)->x(), before.x());
}

TEST_F(ViewingTest, TheWheelZoomsTowardsThePointer)
{
    const QPointF pointer = *viewport().camera().seenAt(blue);
    const double distance = viewport().camera().pose().distance;
    QWheelEvent event(pointer, viewport().mapToGlobal(pointer.toPoint()), {}, {0, 240},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&viewport(), &event);
    EXPECT_NEAR(viewport().camera().pose().distance, distance / (1.2 * 1.2), 1e-9);
    EXPECT_NEAR(viewport().camera().seenAt(blue)->x(), pointer.x(), 0.1);
    EXPECT_NEAR(viewport().camera().seenAt(blue)->y(), pointer.y(), 0.1);
}

TEST_F(ViewingTest, MarksAndHighlightsAreSeenAndGoWithTheModel)
{
    const std::vector<QVector3D> face = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    viewport().flyTo(face);
    viewport().mark(face);
    EXPECT_GT(colourOf({0, 0, 0}).green(), 60) << "orange upon red";
    viewport().highlightMaterial(QStringLiteral("blue"));
    EXPECT_EQ(colourOf({0.25f, 0.25f, 0}).red(), colourOf({0.25f, 0.25f, 0}).blue()) << "grey";
    showsAfter([this] { window().reload(); });
    EXPECT_TRUE(viewport().options().marked.empty());
    EXPECT_TRUE(viewport().options().highlighted.isNull());
}

/// Panels say again what they said before, and a frame of a large model takes seconds without a
/// graphics card.
TEST_F(ViewingTest, OnlyWhatChangesIsDrawn)
{
    class Frames : public QObject
    {
    public:
        int count = 0;

    protected:
        bool eventFilter(QObject *, QEvent *event) override
        {
            count += event->type() == QEvent::Paint;
            return false;
        }
    };
    const auto framesAfter = [this](const std::function<void()> &action) {
        QTest::qWait(100);
        Frames frames;
        viewport().installEventFilter(&frames);
        action();
        QTest::qWait(100);
        return frames.count;
    };
    const std::vector<QVector3D> corners = {{0, 0, 0}, {1, 0, 0}};
    EXPECT_EQ(framesAfter([&] { viewport().mark({}); }), 0);
    EXPECT_GT(framesAfter([&] { viewport().mark(corners); }), 0);
    EXPECT_EQ(framesAfter([&] { viewport().mark(corners); }), 0);
    EXPECT_EQ(framesAfter([&] { viewport().highlightMaterial(QString()); }), 0);
    EXPECT_GT(framesAfter([&] { viewport().highlightMaterial(QStringLiteral("red")); }), 0);
    EXPECT_EQ(framesAfter([&] { viewport().highlightMaterial(QStringLiteral("red")); }), 0);
}

TEST_F(ViewingTest, AnotherContextLoadsTheModelAgainFromTheSameCamera)
{
    drag({60, 20}, Qt::LeftButton);
    const QImage before = seen();
    const double angle = azimuth();
    showsAfter([this] {
        // As it happens to a widget that moves to another window.
        QWidget *const widget = window().takeCentralWidget();
        EXPECT_EQ(viewport().details(), nullptr);
        window().setCentralWidget(widget);
        widget->show();
    });
    EXPECT_EQ(azimuth(), angle);
    EXPECT_EQ(seen(), before);
}

TEST_F(ViewingTest, TheWindowRemembersItself)
{
    actions().grid->setChecked(true);
    actions().upZ->trigger();
    window().resize(777, 555);
    startAgain();
    EXPECT_EQ(window().size(), QSize(777, 555));
    EXPECT_TRUE(actions().grid->isChecked());
    EXPECT_TRUE(viewport().options().grid);
    EXPECT_FALSE(actions().axes->isChecked());
    EXPECT_FALSE(viewport().options().axes);
    EXPECT_TRUE(actions().upZ->isChecked());
    EXPECT_EQ(viewport().camera().upAxis(), Render::UpAxis::Z);
}

TEST_F(ViewingTest, FullScreenIsOnlyThePicture)
{
    actions().fullScreen->trigger();
    EXPECT_FALSE(window().statusBar()->isVisible());
    EXPECT_TRUE(window().windowState() & Qt::WindowFullScreen);
    QTest::keyClick(&window(), Qt::Key_Escape);
    EXPECT_TRUE(window().statusBar()->isVisible());
    EXPECT_FALSE(window().windowState() & Qt::WindowFullScreen);
}

TEST_F(ViewingTest, TheSheetListsEveryKey)
{
    actions().shortcuts->trigger();
    const auto *const sheet = window().findChild<ShortcutsSheet *>();
    ASSERT_TRUE(sheet);
    QStringList texts;
    for (const QLabel *label : sheet->findChildren<QLabel *>())
        texts += label->text();
    for (const QAction *action :
         {actions().open, actions().reload, actions().frame, actions().front, actions().upZ,
          actions().wireframe, actions().grid, actions().fullScreen, actions().copyCommand}) {
        EXPECT_TRUE(texts.contains(action->shortcut().toString())) << action->text().toStdString();
        EXPECT_TRUE(texts.contains(action->statusTip())) << action->text().toStdString();
        EXPECT_FALSE(action->toolTip().isEmpty());
    }
}

TEST_F(ViewingTest, ADarkDesktopHasADarkBackground)
{
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::Window, QColor(40, 40, 40));
    window().setPalette(palette);
    EXPECT_LT(viewport().options().backgroundTop.lightness(), 100);
    palette.setColor(QPalette::Window, QColor(240, 240, 240));
    window().setPalette(palette);
    EXPECT_EQ(viewport().options().backgroundTop, Render::RenderOptions().backgroundTop);
}

/// Run by the test below, in a process of its own.
TEST(OldOpenGLTest, DISABLED_SaysWhatToDo)
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    MainWindow window(settings);
    window.show();
    const auto *const notice = window.findChild<Notice *>();
    waitFor([&] { return notice->text().contains(QLatin1String("OpenGL")); }, "the notice", 20);
    EXPECT_TRUE(notice->isVisible());
    EXPECT_THAT(
        notice->text().toStdString(),
        ::testing::AllOf(::testing::HasSubstr("OpenGL 4.3"),
                         ::testing::EndsWith("Update the graphics driver, or start orv-view "
                                             "with LIBGL_ALWAYS_SOFTWARE=1 in its "
                                             "environment, which draws without a graphics "
                                             "card.")));
    // It neither crashes nor hangs over a model.
    window.open(QStringLiteral(ORV_SAMPLES_DIR "/textured_cube.obj"));
    QTest::qWait(300);
    EXPECT_THAT(notice->text().toStdString(), ::testing::HasSubstr("OpenGL 4.3"));
}

TEST(OldOpenGLTest, ADriverOfAnOlderVersionIsSaid)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("MESA_GL_VERSION_OVERRIDE"), QStringLiteral("3.3"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--gtest_also_run_disabled_tests"),
                   QStringLiteral("--gtest_filter=OldOpenGLTest.DISABLED_SaysWhatToDo")});
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAll().toStdString();
}

} // namespace
