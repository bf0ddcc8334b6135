/// \file
/// Straight lines of any width over a picture.
#pragma once

#include <QtGui/QColor>
#include <QtGui/QMatrix4x4>
#include <QtGui/QVector3D>

#include <memory>
#include <vector>

class QString;

namespace Halvard::Orv::Render {

class ShaderProgram;

/// A line with round ends. Both ends in the same place make a dot.
struct Line
{
    QVector3D from;
    QVector3D to;
    QColor colour;
    float width = 1; ///< in pixels
};

/// How lines are seen.
struct LineView
{
    QMatrix4x4 matrix; ///< from the lines' space to clip space
    /// Whether what was drawn hides them.
    bool isHidden = true;
    float opacity = 1;
    /// Towards the viewer, in depths after division: lines upon a surface need some.
    float depthBias = 0;
    /// Lines fade out towards the border of this sphere; 0 for none.
    float fadeRadius = 0;
    QVector3D fadeCentre;
};

/// OpenGL's own lines are one pixel wide on most drivers; these are made of triangles.
///
/// Needs the same OpenGL 4.3+ context current from create() to the end of its life.
class LineDrawer
{
public:
    /// \param error receives the driver's log when the result is null; may be null.
    static std::unique_ptr<LineDrawer> create(QString *error = nullptr);
    ~LineDrawer();
    LineDrawer(const LineDrawer &) = delete;
    LineDrawer &operator=(const LineDrawer &) = delete;

    /// Into the bound framebuffer and the viewport set. Leaves blending and the depth test off;
    /// storage binding 1 is ours.
    void draw(const std::vector<Line> &lines, const LineView &view);

private:
    LineDrawer();

    std::unique_ptr<ShaderProgram> _program;
    unsigned _vertexArray = 0;
    unsigned _buffer = 0;
};

} // namespace Halvard::Orv::Render
