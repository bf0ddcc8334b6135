#include "WindowTest.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>
#include <QtTest/QTest>
#include <QtWidgets/QAction>

#include <viewer/Notice.h>

namespace OrvTest {

using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;

bool waitFor(const std::function<bool()> &condition, const char *what, int seconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 1000 * seconds) {
            ADD_FAILURE() << "waited in vain for " << what;
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(1);
    }
    return true;
}

WindowTest::WindowTest()
{
    startAgain();
}

WindowTest::~WindowTest() = default;

void WindowTest::startAgain()
{
    if (_window)
        _window->close();
    _window.reset();
    _settings.reset();
    _settings = std::make_unique<QSettings>(_folder.filePath(QStringLiteral("settings.ini")),
                                            QSettings::IniFormat);
    _window = std::make_unique<MainWindow>(*_settings);
    _window->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(_window.get()));
    _window->activateWindow();
    EXPECT_TRUE(waitFor([this] { return viewport().isValid(); }, "OpenGL"));
}

void WindowTest::open(const QString &path)
{
    showsAfter([&] { window().open(path); });
}

void WindowTest::openModel(const QByteArray &contents)
{
    open(files.write(QStringLiteral("model.obj"), contents));
}

void WindowTest::showsAfter(const std::function<void()> &action)
{
    EXPECT_EQ(endOfLoadAfter(action).value_or(QString()), QString());
}

QString WindowTest::failsAfter(const std::function<void()> &action)
{
    const std::optional<QString> sentence = endOfLoadAfter(action);
    EXPECT_TRUE(sentence) << "a model is shown";
    return sentence.value_or(QString());
}

std::optional<QString> WindowTest::endOfLoadAfter(const std::function<void()> &action)
{
    bool isShown = false;
    std::optional<QString> sentence;
    QObject context;
    QObject::connect(&window(), &MainWindow::modelShown, &context, [&] { isShown = true; });
    QObject::connect(&window(), &MainWindow::loadFailed, &context,
                     [&](const QString &text) { sentence = text; });
    action();
    waitFor([&] { return isShown || sentence; }, "the end of the load");
    return isShown ? std::nullopt : sentence;
}

QString WindowTest::notice() const
{
    const auto *const label = _window->findChild<Notice *>();
    return label->isVisible() ? label->text() : QString();
}

QImage WindowTest::seen()
{
    return viewport().grabFramebuffer();
}

QColor WindowTest::seenAt(double x, double y)
{
    const QImage image = seen();
    return image.pixelColor(int(x * image.width()), int(y * image.height()));
}

void WindowTest::showPlainly()
{
    actions().grid->setChecked(false);
    actions().axes->setChecked(false);
    viewport().setBackground(Qt::black, Qt::black);
}

} // namespace OrvTest
