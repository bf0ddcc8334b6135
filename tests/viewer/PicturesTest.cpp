// The pictures that the window makes, and the command line that makes the same.
#include "TwoSquares.h"
#include <render/Shading.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTextCodec>
#include <QtGui/QClipboard>
#include <QtTest/QTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QStatusBar>

#include <viewer/Notice.h>
#include <viewer/PictureDialog.h>
#include <viewer/RenderCommandLine.h>

namespace {

using namespace OrvTest;
using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;

class PicturesTest : public TwoSquaresTest
{};

TEST_F(PicturesTest, ThePictureIsThatOfTheCommandLine)
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

TEST_F(PicturesTest, ANameIsQuotedForTheShell)
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
TEST_F(PicturesTest, ANameOfAnyBytesIsQuotedForTheShell)
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

TEST_F(PicturesTest, APictureIsSavedLargerAndTransparent)
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

TEST_F(PicturesTest, ThePictureDialogRefusesWhatIsTooLarge)
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

TEST_F(PicturesTest, APictureThatCannotBeWrittenIsSaid)
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

TEST_F(PicturesTest, ThePictureIsCopied)
{
    actions().copyPicture->trigger();
    const QImage copied = QGuiApplication::clipboard()->image();
    EXPECT_EQ(copied.size(), pixels());
    const QPointF place = *viewport().camera().seenAt(red) * viewport().devicePixelRatioF();
    EXPECT_GT(copied.pixelColor(place.toPoint()).red(), 150);
}

} // namespace
