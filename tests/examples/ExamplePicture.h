/// \file
/// The picture that an example wrote, by the places of the scene.
#pragma once

#include <gtest/gtest.h>

#include <QtGui/QColor>
#include <QtGui/QImage>
#include <QtGui/QMatrix4x4>
#include <QtGui/QVector3D>

#include <cmath>

namespace OrvTest {

/// The pixel in which `position` of the scene is seen through `camera`; invalid outside.
inline QColor colourAt(const QImage &picture, const QMatrix4x4 &camera, const QVector3D &position)
{
    const QVector3D place = camera.map(position); // -1 to 1, from the left and from the bottom
    const int x = int(std::floor((0.5f + 0.5f * place.x()) * float(picture.width())));
    const int y = int(std::floor((0.5f - 0.5f * place.y()) * float(picture.height())));
    return picture.valid(x, y) ? picture.pixelColor(x, y) : QColor();
}

/// \param red, green, blue from 0 to 1; what is beyond is cut.
/// \param tolerance in 255ths, for rounding and for neighbours that a filter mixes in.
inline void expectColour(const QColor &colour, double red, double green, double blue,
                         int tolerance = 2)
{
    const auto in255ths = [](double value) { return 255 * std::fmin(value, 1); };
    EXPECT_TRUE(colour.isValid());
    EXPECT_NEAR(colour.red(), in255ths(red), tolerance) << colour.name().toStdString();
    EXPECT_NEAR(colour.green(), in255ths(green), tolerance) << colour.name().toStdString();
    EXPECT_NEAR(colour.blue(), in255ths(blue), tolerance) << colour.name().toStdString();
}

} // namespace OrvTest
