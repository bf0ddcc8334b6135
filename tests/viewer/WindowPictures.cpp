// Pictures of the window, for its page: scripts/viewer_pictures.sh runs this.
#include <QtCore/QElapsedTimer>
#include <QtCore/QLoggingCategory>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtGui/QPalette>
#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDockWidget>

#include <cstdio>
#include <functional>
#include <vector>
#include <viewer/MainWindow.h>
#include <viewer/Viewport.h>
#include <viewer/WindowActions.h>

using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;

namespace {

void handleEvents(int milliseconds)
{
    QTest::qWait(milliseconds);
}

bool save(const MainWindow &window, const QString &path)
{
    handleEvents(300);
    const QRect place(window.mapToGlobal(QPoint(0, 0)), window.size());
    const QPixmap picture =
        window.screen()->grabWindow(0, place.x(), place.y(), place.width(), place.height());
    if (picture.save(path))
        return true;
    std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
    return false;
}

bool open(MainWindow &window, const QString &path)
{
    bool isShown = false;
    QObject context;
    QObject::connect(&window, &MainWindow::modelShown, &context, [&] { isShown = true; });
    window.open(path);
    return QTest::qWaitFor([&] { return isShown; }, 60000);
}

/// Has the window do something, and saves what it shows then.
struct Picture
{
    const char *name;
    const char *model; // null for the one before
    std::function<void(MainWindow &window)> prepare;
};

void showPanels(MainWindow &window, bool isOn)
{
    for (QDockWidget *panel : window.findChildren<QDockWidget *>())
        panel->setVisible(isOn);
}

void useDarkColours()
{
    QPalette dark(QColor(0x2b, 0x2e, 0x33), QColor(0x2b, 0x2e, 0x33));
    dark.setColor(QPalette::Base, QColor(0x22, 0x24, 0x28));
    dark.setColor(QPalette::AlternateBase, QColor(0x27, 0x2a, 0x2e));
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        dark.setColor(role, QColor(0xe2, 0xe4, 0xe8));
    dark.setColor(QPalette::Highlight, QColor(0x3d, 0x6f, 0xb6));
    QApplication::setPalette(dark);
}

const std::vector<Picture> &pictures()
{
    static const std::vector<Picture> all = {
        {"viewer", "lighthouse.obj", [](MainWindow &window) { showPanels(window, false); }},
        {"viewer_wireframe", nullptr,
         [](MainWindow &window) {
             QTest::keyClick(&window.viewport(), Qt::Key_PageUp);
             QTest::keyClick(&window.viewport(), Qt::Key_PageUp);
             window.actions().wireframe->trigger();
             window.actions().shadings.at(Render::Shading::Groups)->trigger();
         }},
        {"viewer_findings", "broken/broken_export.obj",
         [](MainWindow &window) {
             window.actions().wireframe->trigger();
             window.actions().shadings.at(Render::Shading::Material)->trigger();
             showPanels(window, true);
             handleEvents(1500); // the check
             // The second one is of a face.
             QTest::keyClick(&window, Qt::Key_F8);
             QTest::keyClick(&window, Qt::Key_F8);
         }},
        {"viewer_dark", "lighthouse.obj",
         [](MainWindow &window) {
             showPanels(window, false);
             useDarkColours();
         }},
    };
    return all;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 3) {
        std::fputs("Usage: OrvWindowPictures SAMPLES IMAGES\n", stderr);
        return 2;
    }
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    QApplication application(argc, argv);
    const QString samples = QString::fromLocal8Bit(argv[1]);
    const QString images = QString::fromLocal8Bit(argv[2]);
    const QTemporaryDir folder;
    QSettings settings(folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    MainWindow window(settings);
    window.resize(1000, 700);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return 1;
    window.activateWindow();
    for (const Picture &picture : pictures()) {
        if (picture.model &&
            !open(window, samples + QLatin1Char('/') + QString::fromLatin1(picture.model)))
            return 1;
        picture.prepare(window);
        if (!save(window, images + QLatin1Char('/') + QString::fromLatin1(picture.name) +
                              QStringLiteral(".png")))
            return 1;
    }
    return 0;
}
