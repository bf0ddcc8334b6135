/// \file
/// Pictures of small models.
#pragma once

#include "support/GLTest.h"
#include "support/TemporaryModel.h"

#include <render/Picture.h>

#include <QtGui/QImage>

#include <iosfwd>

QT_BEGIN_NAMESPACE
void PrintTo(const QColor &colour, std::ostream *stream);
QT_END_NAMESPACE

namespace OrvTest {

/// Draws small pictures, straight from the front unless a test says otherwise.
class RenderTest : public GLTest
{
protected:
    RenderTest();

    /// The model of an OBJ file with these contents, beside the fixture's files.
    QImage draw(const QByteArray &contents);

    /// A plain background.
    void setBackground(const QColor &colour);

    /// The pixel at a place given in parts of the picture, from the left and the top.
    static QColor at(const QImage &picture, double x, double y);
    static QColor centre(const QImage &picture) { return at(picture, 0.5, 0.5); }

    TemporaryModel files;
    QSize size = {64, 64};
    Halvard::Orv::Render::ViewAngles angles = {0, 0};
    Halvard::Orv::Render::RenderOptions options;
    Halvard::Orv::Render::TextureSettings textures;
};

/// A square around the origin that looks towards +z:
///
///     4 --- 3    texture coordinates: 4 (0, 1)   3 (1, 1)
///     |     |
///     1 --- 2                         1 (0, 0)   2 (1, 0)
extern const char square[];

} // namespace OrvTest
