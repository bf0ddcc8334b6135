#include "Shaders.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace OrvTest {

namespace {

void attachShader(GLuint program, GLenum kind, const char *source)
{
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    std::array<char, 2048> log{};
    glGetShaderInfoLog(shader, static_cast<GLsizei>(log.size()), nullptr, log.data());
    EXPECT_TRUE(compiled) << log.data() << "\nin\n" << source;
    glAttachShader(program, shader);
    glDeleteShader(shader);
}

} // namespace

const char *const showColour = R"(
#version 430 core
flat in vec4 colour;
out vec4 fragment;
void main() { fragment = colour; }
)";

GLuint linkProgram(const char *vertexShader, const char *fragmentShader)
{
    const GLuint program = glCreateProgram();
    attachShader(program, GL_VERTEX_SHADER, vertexShader);
    attachShader(program, GL_FRAGMENT_SHADER, fragmentShader);
    glLinkProgram(program);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    std::array<char, 2048> log{};
    glGetProgramInfoLog(program, static_cast<GLsizei>(log.size()), nullptr, log.data());
    EXPECT_TRUE(linked) << log.data();
    return linked ? program : 0;
}

Canvas::Canvas(int width, int height)
{
    glGenTextures(1, &_texture);
    glBindTexture(GL_TEXTURE_2D, _texture);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, width, height);
    glBindTexture(GL_TEXTURE_2D, 0);
    glGenFramebuffers(1, &_framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, _framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, _texture, 0);
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum(GL_FRAMEBUFFER_COMPLETE));
    glViewport(0, 0, width, height);
    clear();
}

Canvas::~Canvas()
{
    glDeleteFramebuffers(1, &_framebuffer);
    glDeleteTextures(1, &_texture);
}

void Canvas::clear()
{
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
}

QRgb Canvas::pixel(int x, int y) const
{
    std::array<GLubyte, 4> rgba{};
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    return qRgba(rgba[0], rgba[1], rgba[2], rgba[3]);
}

} // namespace OrvTest
