/// \file
/// A linked pair of shaders.
#pragma once

#include <QtCore/QByteArray>

#include <memory>

class QColor;
class QMatrix4x4;
class QString;
class QVector3D;

namespace Halvard::Orv::Render {

/// Needs the same OpenGL context current from create() to the end of its life.
class ShaderProgram
{
public:
    /// \param error receives the compiler's or linker's log when the result is null;
    ///        may be null.
    static std::unique_ptr<ShaderProgram> create(const QByteArray &vertexSource,
                                                 const QByteArray &fragmentSource,
                                                 QString *error = nullptr);
    ~ShaderProgram();
    ShaderProgram(const ShaderProgram &) = delete;
    ShaderProgram &operator=(const ShaderProgram &) = delete;

    unsigned id() const { return _id; }

    /// \name Uniforms
    /// A name that the program does not have, or does not use, is ignored. The
    /// program need not be in use.
    /// @{
    void set(const char *name, int value);
    void set(const char *name, unsigned value);
    void set(const char *name, float value);
    void set(const char *name, const QVector3D &value);
    void set(const char *name, const QMatrix4x4 &value);
    /// As (red, green, blue, alpha) from 0 to 1, not multiplied by alpha.
    void set(const char *name, const QColor &value);
    /// @}

private:
    explicit ShaderProgram(unsigned id) : _id(id) {}
    int location(const char *name) const;

    unsigned _id;
};

} // namespace Halvard::Orv::Render
