/// \file
/// Programs to draw with, and what they draw into.
#pragma once

#include <OrvGL/OpenGLFunctions.h>

#include <QtGui/QRgb>

namespace OrvTest {

/// A linked program of the current context; 0, with a failure recorded, where the sources are
/// wrong.
GLuint linkProgram(const char *vertexShader, const char *fragmentShader);

/// A fragment shader that shows what the vertex shader puts into `flat out vec4 colour`.
extern const char *const showColour;

/// A framebuffer of `width` x `height` pixels of 8 bits per channel, bound and black.
class Canvas
{
public:
    Canvas(int width, int height);
    ~Canvas();
    Canvas(const Canvas &) = delete;
    Canvas &operator=(const Canvas &) = delete;

    void clear();

    /// The colour of a pixel, counted from the lower left corner.
    QRgb pixel(int x, int y) const;

private:
    GLuint _texture = 0;
    GLuint _framebuffer = 0;
};

constexpr QRgb Black = 0xff000000;
constexpr QRgb Red = 0xffff0000;
constexpr QRgb Green = 0xff00ff00;
constexpr QRgb Blue = 0xff0000ff;
constexpr QRgb White = 0xffffffff;

} // namespace OrvTest
