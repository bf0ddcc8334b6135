// Pictures of the window, for its page: scripts/viewer_pictures.sh runs this.
#include <QtCore/QElapsedTimer>
#include <QtCore/QLoggingCategory>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>

#include <cstdio>
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
    window.resize(1000, 660);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return 1;
    bool isFine = save(window, images + QStringLiteral("/viewer_empty.png"));
    isFine = open(window, samples + QStringLiteral("/lighthouse.obj")) && isFine;
    isFine = save(window, images + QStringLiteral("/viewer.png")) && isFine;
    window.actions().wireframe->trigger();
    isFine = save(window, images + QStringLiteral("/viewer_wireframe.png")) && isFine;
    return isFine ? 0 : 1;
}
