/// \file
/// Tests with an OpenGL context of their own.
#pragma once

#include <OrvGL/OpenGLFunctions.h>

#include <OrvGL/BufferObject.h>
#include <OrvGL/HeadlessContext.h>
#include <OrvGL/OpenGLDeviceContext.h>

#include <gtest/gtest.h>

#include <QtCore/QByteArray>
#include <QtCore/QSharedPointer>

#include <initializer_list>
#include <memory>

namespace OrvTest {

/// A new context; null, with a failure recorded, where none can be made.
std::unique_ptr<Halvard::Orv::HeadlessContext>
makeContext(const Halvard::Orv::HeadlessContext *shareWith = nullptr);

/// A test with a fresh context, current on its thread. It fails when it leaves an OpenGL error
/// behind.
class GLFixture : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    std::unique_ptr<Halvard::Orv::HeadlessContext> _context;
    QSharedPointer<Halvard::Orv::OpenGLDeviceContext> _device;
};

/// The values as they lie in memory.
template <typename Value>
QByteArray bytesOf(std::initializer_list<Value> values)
{
    return QByteArray(reinterpret_cast<const char *>(values.begin()),
                      static_cast<int>(values.size() * sizeof(Value)));
}

/// A buffer of the current context that holds the values.
template <typename Value>
QSharedPointer<Halvard::Orv::BufferObject> makeBuffer(GLenum target,
                                                      std::initializer_list<Value> values)
{
    auto buffer = Halvard::Orv::OpenGLDeviceContext::current()->createBufferObject();
    buffer->setTarget(target);
    buffer->uploadArbitraryData(values.begin(), static_cast<int>(values.size()), GL_STATIC_DRAW,
                                sizeof(Value));
    return buffer;
}

/// What glGetIntegerv answers.
inline GLuint integer(GLenum query)
{
    GLint value = 0;
    glGetIntegerv(query, &value);
    return static_cast<GLuint>(value);
}

} // namespace OrvTest
