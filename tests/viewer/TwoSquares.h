/// \file
/// A small model in the window, for tests of what is seen of it.
#pragma once

#include "WindowTest.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDockWidget>

namespace OrvTest {

/// A red and a blue square side by side, seen from the front:
///
///     +-----+-----+    texture coordinates: from (0, 0) at the lower left of each square
///     | red | blue|    to (1, 1) at its upper right
///     +-----+-----+
inline const QByteArray TwoSquares =
    "mtllib m.mtl\n"
    "v 0 0 0\nv 1 0 0\nv 2 0 0\nv 0 1 0\nv 1 1 0\nv 2 1 0\n"
    "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
    "usemtl red\nf 1/1 2/2 5/3 4/4\nusemtl blue\nf 2/1 3/2 6/3 5/4\n";

/// A window that shows them, and nothing else, from the front.
class TwoSquaresTest : public WindowTest
{
protected:
    TwoSquaresTest()
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

} // namespace OrvTest
