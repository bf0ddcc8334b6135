// How models come into the window: opened, dropped, cancelled, reloaded; and those that do not.
#include "WindowTest.h"
#include <OrvModel/PreparedModel.h>

#include <QtCore/QFile>
#include <QtCore/QMimeData>
#include <QtCore/QProcess>
#include <QtCore/QUrl>
#include <QtGui/QDropEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QToolButton>

#include <cstdio>
#include <fstream>
#include <viewer/LoadingBar.h>
#include <viewer/ModelLoader.h>
#include <viewer/ProgressBar.h>
#include <viewer/RecentFiles.h>

namespace {

using namespace OrvTest;
using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;

/// A square that fills most of the view, seen from the front.
const QByteArray Square = "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\n";

QByteArray coloured(const QByteArray &material)
{
    return "mtllib m.mtl\n" + Square + "usemtl " + material + "\nf 1 2 3 4\n";
}

class LoadingTest : public WindowTest
{
protected:
    LoadingTest()
    {
        files.write(QStringLiteral("m.mtl"), "newmtl red\nKd 1 0 0\nnewmtl green\nKd 0 1 0\n");
        showPlainly();
    }

    QString write(const QByteArray &contents) const
    {
        return files.write(QStringLiteral("model.obj"), contents);
    }

    bool showsRed() { return seenAt(0.5, 0.5).red() > 100 && seenAt(0.5, 0.5).green() < 20; }
    bool showsGreen() { return seenAt(0.5, 0.5).green() > 100 && seenAt(0.5, 0.5).red() < 20; }

    /// Some seconds' work for the loader.
    QString largeModel() const
    {
        QByteArray text;
        constexpr int Side = 900;
        for (int y = 0; y < Side; ++y) {
            for (int x = 0; x < Side; ++x)
                text += "v " + QByteArray::number(x) + " " + QByteArray::number((x * y) % 7) + " " +
                        QByteArray::number(y) + "\n";
        }
        for (int y = 0; y + 1 < Side; ++y) {
            for (int x = 1; x < Side; ++x) {
                const auto at = [&](int dx, int dy) {
                    return " " + QByteArray::number((y + dy) * Side + x + dx);
                };
                text += "f" + at(0, 0) + at(1, 0) + at(1, 1) + at(0, 1) + "\n";
            }
        }
        return files.write(QStringLiteral("large.obj"), text);
    }
};

TEST_F(LoadingTest, InvitesToOpenAModelAtFirst)
{
    EXPECT_EQ(notice(), QStringLiteral("Drop an OBJ file here, or open one with Ctrl+O."));
    EXPECT_EQ(viewport().details(), nullptr);
    EXPECT_EQ(seenAt(0.5, 0.1), QColor(Qt::black));
}

TEST_F(LoadingTest, ShowsAModelAndItsFacts)
{
    QSignalSpy shown(&window(), &MainWindow::modelShown);
    openModel(coloured("red"));
    EXPECT_EQ(shown.count(), 1);
    EXPECT_EQ(notice(), QString());
    EXPECT_TRUE(showsRed());
    EXPECT_EQ(window().windowTitle(), QStringLiteral("model.obj - Model Viewer"));
    const auto details = viewport().details();
    ASSERT_TRUE(details);
    EXPECT_EQ(details->path, files.path(QStringLiteral("model.obj")));
    EXPECT_EQ(details->report.triangles, 2u);
    ASSERT_EQ(details->materials.size(), 1u);
    EXPECT_EQ(details->materials[0].name, QStringLiteral("red"));
    EXPECT_EQ(details->libraries, QStringList{files.path(QStringLiteral("m.mtl"))});
    EXPECT_EQ(details->bounds.minimum(), QVector3D(-1, -1, 0));
}

TEST_F(LoadingTest, TheOpenDialogOpens)
{
    const QString path = write(coloured("green"));
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    showsAfter([&] {
        QTimer::singleShot(0, [&] {
            auto *const dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            dialog->findChild<QLineEdit *>()->setText(path);
            QTest::keyClick(dialog->findChild<QLineEdit *>(), Qt::Key_Return);
        });
        actions().open->trigger();
    });
    EXPECT_TRUE(showsGreen());
}

TEST_F(LoadingTest, ADroppedFileIsOpened)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(write(coloured("red")))});
    const QPoint middle = window().rect().center();
    QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    showsAfter([&] {
        QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window(), &drop);
    });
    EXPECT_TRUE(showsRed());
}

TEST_F(LoadingTest, WhatIsNoFileIsNotDropped)
{
    QMimeData data;
    data.setUrls({QUrl(QStringLiteral("https://example.org/model.obj"))});
    data.setText(QStringLiteral("text"));
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window(), &enter);
    EXPECT_FALSE(enter.isAccepted());
}

TEST_F(LoadingTest, RecentFilesAreRemembered)
{
    const QString red = files.write(QStringLiteral("red & white.obj"), coloured("red"));
    const QString green = files.write(QStringLiteral("green.obj"), coloured("green"));
    open(red);
    open(green);
    startAgain();
    showPlainly();
    auto *const recent = window().findChild<RecentFiles *>();
    EXPECT_EQ(recent->paths(), (QStringList{green, red}));
    ASSERT_GE(recent->actions().size(), 2);
    EXPECT_EQ(recent->actions().at(1)->text(), QStringLiteral("red && white.obj"));
    showsAfter([&] { recent->actions().at(1)->trigger(); });
    EXPECT_TRUE(showsRed());
    EXPECT_EQ(recent->paths(), (QStringList{red, green}));
}

TEST_F(LoadingTest, MissingAndBrokenFilesAreSaid)
{
    const QString missing = files.path(QStringLiteral("none.obj"));
    const QString folder = files.directory();
    const QString letter =
        files.write(QStringLiteral("letter.obj"), "Dear reader,\nthis is one.\n");
    const QString noLibrary =
        files.write(QStringLiteral("nolib.obj"), "mtllib gone.mtl\nv 0 0 0\n");
    const QString lost = files.write(QStringLiteral("lost.obj"), Square + "usemtl none\nf 1 2 3\n");
    const auto text = [](const QString &path) { return path.toStdString(); };
    struct
    {
        const char *name;
        QString path;
        std::string sentence;
    } const rows[] = {
        {"missing", missing, "Failed to load OBJ file '" + text(missing) + "': no such file."},
        {"folder", folder, "Failed to load OBJ file '" + text(folder) + "': is a directory."},
        {"no model", letter,
         "'" + text(letter) +
             "' is no OBJ file: none of its lines begins with a keyword of that format."},
        {"no library", noLibrary,
         "Failed to load MTL file '" + text(files.path(QStringLiteral("gone.mtl"))) +
             "': no such file."},
        {"nothing drawn", lost, "None of the faces of '" + text(lost) + "' is drawn."},
    };
    for (const bool hasModel : {false, true}) {
        if (hasModel)
            openModel(coloured("red"));
        for (const auto &row : rows) {
            SCOPED_TRACE(row.name);
            EXPECT_EQ(failsAfter([&] { window().open(row.path); }).toStdString(), row.sentence);
            EXPECT_EQ(notice().toStdString(), row.sentence);
            // What was shown stays.
            EXPECT_EQ(showsRed(), hasModel);
        }
    }
    QTest::keyClick(&viewport(), Qt::Key_Left);
    EXPECT_EQ(notice(), QString()) << "goes when the camera moves";
}

TEST_F(LoadingTest, AModelWithoutFacesSaysThatThereIsNothing)
{
    openModel("v 0 0 0\n");
    const std::string path = files.path(QStringLiteral("model.obj")).toStdString();
    EXPECT_EQ(notice().toStdString(), "There is nothing to draw in '" + path + "'.");
}

TEST_F(LoadingTest, ALoadIsCancelledHalfWay)
{
    openModel(coloured("red"));
    const QString large = largeModel();
    QSignalSpy cancelled(&window(), &MainWindow::loadCancelled);
    QSignalSpy shown(&window(), &MainWindow::modelShown);
    double reached = 0;
    QObject::connect(window().findChild<ModelLoader *>(), &ModelLoader::progressed, &window(),
                     [&](const QString &, double fraction) {
                         reached = fraction;
                         auto *const bar = window().findChild<LoadingBar *>();
                         EXPECT_TRUE(bar->isVisible());
                         if (fraction > 0.3)
                             QTest::mouseClick(bar->findChild<QToolButton *>(), Qt::LeftButton);
                     });
    window().open(large);
    waitFor([&] { return !cancelled.isEmpty(); }, "the end of the load");
    EXPECT_GT(reached, 0.3);
    EXPECT_EQ(shown.count(), 0);
    EXPECT_FALSE(window().findChild<LoadingBar *>()->isVisible());
    EXPECT_TRUE(showsRed());
    EXPECT_EQ(viewport().details()->path, files.path(QStringLiteral("model.obj")));
}

/// Names are bytes to the system, and text to the window: one that is no text cannot be asked for.
TEST_F(LoadingTest, AFileWhoseNameIsNoTextIsASentence)
{
    const QByteArray name = files.directory().toLocal8Bit() + "/\xff.obj";
    std::ofstream(name.constData()) << Square.constData() << "f 1 2 3 4\n";
    const QString sentence = failsAfter([&] { window().open(QFile::decodeName(name)); });
    std::remove(name.constData()); // which the folder's own clearing up could not
    EXPECT_EQ(sentence,
              QStringLiteral("Failed to load OBJ file '%1': no such file.")
                  .arg(files.path(QString(QChar::ReplacementCharacter)) + QStringLiteral(".obj")));
    EXPECT_EQ(notice(), sentence);
}

TEST_F(LoadingTest, ProgressIsPaintedSomeTimesASecond)
{
    auto *const bar = window().findChild<ProgressBar *>(QStringLiteral("progress"));
    window().findChild<LoadingBar *>()->tell(QStringLiteral("Reading"), 0.25);
    QTest::qWait(200);
    ASSERT_TRUE(bar->isVisible());
    EXPECT_EQ(bar->value(), bar->maximum() / 4);
    QSignalSpy painted(bar, &QProgressBar::valueChanged);
    for (int i = 0; i <= 500; ++i)
        bar->tell(0.25 + i * 0.001);
    EXPECT_EQ(painted.count(), 0) << "in the middle of other work";
    QTest::qWait(200);
    EXPECT_EQ(painted.count(), 1);
    EXPECT_EQ(bar->value(), bar->maximum() * 3 / 4);
}

TEST_F(LoadingTest, AnUploadIsCancelledByEscape)
{
    openModel(coloured("red"));
    QSignalSpy cancelled(&window(), &MainWindow::loadCancelled);
    QSignalSpy shown(&window(), &MainWindow::modelShown);
    QObject::connect(&viewport(), &Viewport::uploadProgressed, &window(),
                     [&] { QTest::keyClick(&window(), Qt::Key_Escape); });
    window().open(files.write(QStringLiteral("other.obj"), coloured("green")));
    waitFor([&] { return !cancelled.isEmpty(); }, "the end of the upload");
    EXPECT_TRUE(showsRed());
    EXPECT_EQ(shown.count(), 0);
    EXPECT_FALSE(viewport().isUploading());
}

TEST_F(LoadingTest, TheNextModelEndsTheLoadBeforeIt)
{
    const QString large = largeModel();
    const QString green = write(coloured("green"));
    QSignalSpy shown(&window(), &MainWindow::modelShown);
    window().open(large);
    open(green);
    EXPECT_EQ(shown.count(), 1);
    EXPECT_TRUE(showsGreen());
}

TEST_F(LoadingTest, TexturesAreShown)
{
    QImage image(2, 2, QImage::Format_RGB32);
    image.fill(Qt::blue);
    ASSERT_TRUE(image.save(files.path(QStringLiteral("blue.png"))));
    files.write(QStringLiteral("t.mtl"), "newmtl t\nmap_Kd blue.png\n");
    openModel("mtllib t.mtl\n" + Square + "vt 0 0\nusemtl t\nf 1/1 2/1 3/1 4/1\n");
    EXPECT_GT(seenAt(0.5, 0.5).blue(), 100);
    EXPECT_LT(seenAt(0.5, 0.5).red(), 20);
    EXPECT_EQ(viewport().details()->textures, QStringList{files.path(QStringLiteral("blue.png"))});
}

TEST_F(LoadingTest, TheProgramOpensWhatItsCommandLineNames)
{
    // Its settings belong to the test.
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), files.directory());
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(ORV_VIEW_PROGRAM), {QStringLiteral("--version")});
    ASSERT_TRUE(program.waitForFinished());
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_TRUE(program.readAllStandardOutput().startsWith("orv-view "));

    const QString model = write(coloured("red"));
    program.start(QStringLiteral(ORV_VIEW_PROGRAM), {model});
    // The model is open once it is among the recent ones.
    const QString settings = files.path(QStringLiteral("OrvModel/orv-view.conf"));
    waitFor(
        [&] {
            QFile file(settings);
            return file.open(QIODevice::ReadOnly) && file.readAll().contains("model.obj");
        },
        "the settings of the program");
    program.terminate();
    EXPECT_TRUE(program.waitForFinished());
}

} // namespace
