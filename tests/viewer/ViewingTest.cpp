// What is seen, from where, and the pictures that are made of it.
#include "WindowTest.h"
#include <render/Shading.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTextCodec>
#include <QtGui/QClipboard>
#include <QtGui/QWheelEvent>
#include <QtTest/QTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QStatusBar>

#include <cmath>
#include <viewer/Notice.h>
#include <viewer/PictureDialog.h>
#include <viewer/RenderCommandLine.h>
#include <viewer/ShortcutsSheet.h>

namespace {

using namespace OrvTest;
using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;

/// A red and a blue square side by side, seen from the front:
///
///     +-----+-----+    texture coordinates: from (0, 0) at the lower left of each square
///     | red | blue|    to (1, 1) at its upper right
///     +-----+-----+
const QByteArray TwoSquares = "mtllib m.mtl\n"
                              "v 0 0 0\nv 1 0 0\nv 2 0 0\nv 0 1 0\nv 1 1 0\nv 2 1 0\n"
                              "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
                              "usemtl red\nf 1/1 2/2 5/3 4/4\nusemtl blue\nf 2/1 3/2 6/3 5/4\n";

class ViewingTest : public WindowTest
{
protected:
    ViewingTest()
    {
        files.write(QStringLiteral("m.mtl"), "newmtl red\nKd 1 0 0\nnewmtl blue\nKd 0 0 1\n");
        window().resize(900, 640);
        for (QDockWidget *panel : window().findChildren<QDockWidget *>())
            panel->hide();
        openModel(TwoSquares);
        showPlainly();
        QTest::keyClick(&window(), Qt::Key_1);
    }

    /// Those of the display: more than the window counts where the screen is a fine one.
    QSize pixels() { return viewport().size() * viewport().devicePixelRatioF(); }

    /// Where a point of the model is seen.
    QColor colourOf(const QVector3D &point)
    {
        const auto place = viewport().camera().seenAt(point);
        if (!place)
            return {};
        const QSizeF size = viewport().camera().viewSize();
        return seenAt(place->x() / size.width(), place->y() / size.height());
    }

    void drag(const QPoint &by, Qt::MouseButton button, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        const QPoint start = viewport().rect().center();
        QTest::mousePress(&viewport(), button, keys, start);
        QMouseEvent move(QEvent::MouseMove, start + by, Qt::NoButton, button, keys);
        QApplication::sendEvent(&viewport(), &move);
        QTest::mouseRelease(&viewport(), button, keys, start + by);
    }

    double azimuth() { return viewport().camera().pose().angles.azimuth; }

    const QVector3D red = {0.5f, 0.5f, 0};
    const QVector3D blue = {1.5f, 0.5f, 0};
};

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

TEST_F(ViewingTest, ThePictureIsThatOfTheCommandLine)
{
    struct
    {
        const char *name;
        std::function<void()> change;
    } const rows[] = {
        {"framed", [] {}},
        {"turned, moved and near",
         [this] {
             drag({83, 31}, Qt::LeftButton);
             drag({-20, 10}, Qt::MiddleButton);
             drag({0, -70}, Qt::LeftButton, Qt::ControlModifier);
         }},
        {"everything on, the z axis up, and two background colours",
         [this] {
             actions().upZ->trigger();
             actions().grid->setChecked(true);
             actions().axes->setChecked(true);
             actions().wireframe->setChecked(true);
             actions().shadings.at(Render::Shading::Groups)->trigger();
             viewport().setBackground(QColor(10, 20, 30), QColor(200, 100, 50));
         }},
        {"a transparent background",
         [this] { viewport().setBackground(QColor(0, 0, 0, 0), QColor(0, 0, 0, 0)); }},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        row.change();
        const QString saved = files.path(QStringLiteral("saved.png"));
        const QSize size = pixels();
        ASSERT_TRUE(window().savePicture(saved, size, viewport().options()));
        actions().copyCommand->trigger();
        QString line = QGuiApplication::clipboard()->text();
        ASSERT_TRUE(line.startsWith(QLatin1String("orv render "))) << line.toStdString();
        line.replace(0, 3, QStringLiteral(ORV_PROGRAM));
        QProcess shell;
        shell.setWorkingDirectory(files.directory());
        shell.start(QStringLiteral("sh"), {QStringLiteral("-c"), line});
        ASSERT_TRUE(shell.waitForFinished(60000));
        EXPECT_EQ(shell.exitCode(), 0) << shell.readAllStandardError().toStdString();
        const QImage drawn(files.path(QStringLiteral("model.png")));
        EXPECT_EQ(drawn.size(), size);
        EXPECT_EQ(drawn, QImage(saved)) << line.toStdString();
    }
}

TEST_F(ViewingTest, ANameIsQuotedForTheShell)
{
    const QString path =
        files.write(QStringLiteral("it's a $HOME; model.obj"), QByteArray(TwoSquares));
    open(path);
    actions().copyCommand->trigger();
    QProcess shell;
    // As the shell takes it apart.
    shell.start(QStringLiteral("sh"),
                {QStringLiteral("-c"), QStringLiteral("orv() { printf '%s' \"$2\"; }; ") +
                                           QGuiApplication::clipboard()->text()});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.readAllStandardOutput().toStdString(), path.toStdString());
}

/// Also names that no terminal could be pasted.
TEST_F(ViewingTest, ANameOfAnyBytesIsQuotedForTheShell)
{
    struct
    {
        const char *name;
        const char *codec; // of the locale
        QByteArray bytes;
        const char *quoted; // null where it is enough that the shell reads it
    } const rows[] = {
        {"letters", "UTF-8", "\xc3\xbc.obj", "'\xc3\xbc.obj'"},
        {"letters beyond 16 bits", "UTF-8", "\xf0\x9f\x92\xa1.obj", "'\xf0\x9f\x92\xa1.obj'"},
        {"an end of line", "UTF-8", "a\nb", "$'a\\012b'"},
        {"an escape sequence", "UTF-8", "\x1b[31m", nullptr},
        {"a digit behind a number", "UTF-8", "\0017", nullptr},
        {"quotes, backslashes", "UTF-8", "\t'\\'", nullptr},
        {"a sign that turns the direction of text", "UTF-8",
         "a\xe2\x80\xae"
         "b",
         nullptr},
        {"UTF-8 in another locale", "ISO-8859-1", "\xc3\xbc.obj", "$'\\303\\274.obj'"},
        {"bytes that are not UTF-8", "ISO-8859-1", "\xfc.obj", "$'\\374.obj'"},
    };
    QTextCodec *const before = QTextCodec::codecForLocale();
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(row.codec));
        const QString line = renderCommandLine({QFile::decodeName(row.bytes)});
        QTextCodec::setCodecForLocale(before);
        if (row.quoted) {
            EXPECT_EQ(line.toStdString(), std::string("orv ") + row.quoted);
        }
        const QString script = files.path(QStringLiteral("script"));
        files.write(QStringLiteral("script"), "orv() { printf '%s' \"$1\"; }\n" + line.toUtf8());
        QProcess shell;
        shell.start(QStringLiteral("bash"), {script});
        ASSERT_TRUE(shell.waitForFinished());
        EXPECT_EQ(shell.readAllStandardOutput().toHex(), row.bytes.toHex());
    }
}

TEST_F(ViewingTest, APictureIsSavedLargerAndTransparent)
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QString path = files.path(QStringLiteral("large.png"));
    QTimer::singleShot(0, [&] {
        auto *const dialog = qobject_cast<PictureDialog *>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        auto *const scale = dialog->findChild<QComboBox *>(QStringLiteral("scale"));
        scale->setCurrentIndex(1);
        emit scale->activated(1);
        dialog->findChild<QCheckBox *>(QStringLiteral("transparent"))->setChecked(true);
        QTimer::singleShot(0, [&] {
            auto *const names = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            ASSERT_TRUE(names);
            names->findChild<QLineEdit *>()->setText(path);
            QTest::keyClick(names->findChild<QLineEdit *>(), Qt::Key_Return);
        });
        dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save)->click();
    });
    actions().savePicture->trigger();
    const QImage picture(path);
    EXPECT_EQ(picture.size(), pixels() * 2);
    EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(picture.pixelColor(picture.width() / 4, picture.height() / 2).alpha(), 255);
    EXPECT_EQ(window().statusBar()->currentMessage().toStdString(),
              "Saved '" + path.toStdString() + "'.");
}

TEST_F(ViewingTest, ThePictureDialogRefusesWhatIsTooLarge)
{
    PictureDialog dialog({800, 600}, true, false);
    auto *const save = dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save);
    EXPECT_TRUE(save->isEnabled());
    EXPECT_TRUE(dialog.hasGrid());
    EXPECT_FALSE(dialog.hasAxes());
    dialog.findChild<QSpinBox *>(QStringLiteral("width"))->setValue(16000);
    dialog.findChild<QSpinBox *>(QStringLiteral("height"))->setValue(16000);
    EXPECT_FALSE(save->isEnabled());
    dialog.findChild<QSpinBox *>(QStringLiteral("height"))->setValue(6000);
    EXPECT_TRUE(save->isEnabled());
    EXPECT_EQ(dialog.size(), QSize(16000, 6000));
}

TEST_F(ViewingTest, APictureThatCannotBeWrittenIsSaid)
{
    const QSize size(64, 64);
    const QString noFormat = files.path(QStringLiteral("picture.model"));
    EXPECT_FALSE(window().savePicture(noFormat, size, viewport().options()));
    EXPECT_EQ(notice().toStdString(), "'" + noFormat.toStdString() +
                                          "' is not saved: its suffix is not that of an image "
                                          "format. Use .png.");
    QTest::mouseClick(window().findChild<Notice *>(), Qt::LeftButton);
    EXPECT_EQ(notice(), QString());
    EXPECT_FALSE(window().savePicture(files.path(QStringLiteral("none/picture.png")), size,
                                      viewport().options()));
    EXPECT_THAT(notice().toStdString(), ::testing::EndsWith("Choose another folder or name."));
}

TEST_F(ViewingTest, ThePictureIsCopied)
{
    actions().copyPicture->trigger();
    const QImage copied = QGuiApplication::clipboard()->image();
    EXPECT_EQ(copied.size(), pixels());
    const QPointF place = *viewport().camera().seenAt(red) * viewport().devicePixelRatioF();
    EXPECT_GT(copied.pixelColor(place.toPoint()).red(), 150);
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
