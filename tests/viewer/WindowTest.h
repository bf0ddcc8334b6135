/// \file
/// The real window, with models in a folder of their own.
#pragma once

#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>

#include <functional>
#include <memory>
#include <optional>
#include <viewer/MainWindow.h>
#include <viewer/Viewport.h>
#include <viewer/WindowActions.h>

namespace OrvTest {

/// Waits while events are handled. \return false, with a failure, after `seconds`.
bool waitFor(const std::function<bool()> &condition, const char *what, int seconds = 60);

/// A window that is shown, and remembers into a file of its own.
class WindowTest : public ::testing::Test
{
protected:
    WindowTest();
    ~WindowTest() override;

    /// Another window with the same settings, as when the program starts again.
    void startAgain();

    Halvard::Orv::Viewer::MainWindow &window() { return *_window; }
    Halvard::Orv::Viewer::Viewport &viewport() { return _window->viewport(); }
    Halvard::Orv::Viewer::WindowActions &actions() { return _window->actions(); }

    /// Opens a model and waits until it is shown.
    void open(const QString &path);
    /// Writes one with these lines, and opens it.
    void openModel(const QByteArray &contents);
    /// Does something and waits until a model is shown.
    void showsAfter(const std::function<void()> &action);
    /// Does something and waits until that ends without a model. \return the sentence.
    QString failsAfter(const std::function<void()> &action);

    /// What the notice over the picture says; null for none.
    QString notice() const;

    /// What the viewport shows, as it shows it.
    QImage seen();
    /// The pixel at a place given in parts of the viewport, from the left and the top.
    QColor seenAt(double x, double y);

    /// Grid and axes off, and a plain black background.
    void showPlainly();

    TemporaryModel files;

private:
    /// Does something and waits. \return the sentence of a load that fails; nothing of one that does
    ///         not.
    std::optional<QString> endOfLoadAfter(const std::function<void()> &action);

    QTemporaryDir _folder;
    std::unique_ptr<QSettings> _settings;
    std::unique_ptr<Halvard::Orv::Viewer::MainWindow> _window;
};

} // namespace OrvTest
