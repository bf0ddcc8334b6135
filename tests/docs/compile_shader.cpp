// Compiles a shader from stdin by the OpenGL driver.
//
//     compile_shader vertex|fragment <SHADER
//
// Prints what the driver says. Exit status 1: it is no shader of that kind; 2: nobody can tell.
#include <OrvGL/HeadlessContext.h>
#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QString>

#include <array>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>

int main(int argc, char *argv[])
{
    const std::string kind = argc > 1 ? argv[1] : "";
    if (kind != "vertex" && kind != "fragment")
        return std::fprintf(stderr, "compile_shader vertex|fragment <SHADER\n"), 2;
    QString reason;
    const auto context = Halvard::Orv::HeadlessContext::create(&reason);
    if (!context || !context->makeCurrent())
        return std::fprintf(stderr, "no OpenGL context: %s\n", qPrintable(reason)), 2;

    const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    const char *source = text.c_str();
    const GLuint shader = glCreateShader(kind == "vertex" ? GL_VERTEX_SHADER : GL_FRAGMENT_SHADER);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint isCompiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &isCompiled);
    std::array<char, 16384> log{};
    glGetShaderInfoLog(shader, static_cast<GLsizei>(log.size()), nullptr, log.data());
    std::printf("%s", log.data());
    glDeleteShader(shader);
    return isCompiled ? 0 : 1;
}
