#include "support/GLTest.h"

#include <OrvGL/HeadlessContext.h>
#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QString>

#include <memory>

namespace OrvTest {

namespace {

/// Owns the context. It goes before static objects do: a driver that unloads
/// itself at the end of the process would go first.
class GLEnvironment : public ::testing::Environment
{
public:
    void TearDown() override { _context.reset(); }

    /// The context, made when first asked for; null with the reason in error().
    Halvard::Orv::HeadlessContext *context()
    {
        if (!_context && _error.isEmpty())
            _context = Halvard::Orv::HeadlessContext::create(&_error);
        return _context.get();
    }
    const QString &error() const { return _error; }

private:
    std::unique_ptr<Halvard::Orv::HeadlessContext> _context;
    QString _error;
};

GLEnvironment &environment()
{
    // GoogleTest owns it from here on.
    static auto *const registered =
        static_cast<GLEnvironment *>(::testing::AddGlobalTestEnvironment(new GLEnvironment));
    return *registered;
}

/// Environments have to be known before the tests start.
[[maybe_unused]] const GLEnvironment &registeredAtStart = environment();

} // namespace

void GLTest::SetUp()
{
    auto *context = environment().context();
    ASSERT_TRUE(context) << "no OpenGL context: " << environment().error().toStdString();
    ASSERT_TRUE(context->makeCurrent());
}

void GLTest::TearDown()
{
    if (environment().context()) {
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "the test left an OpenGL error behind";
    }
}

NoCurrentContext::NoCurrentContext()
{
    if (auto *context = environment().context())
        context->doneCurrent();
}

NoCurrentContext::~NoCurrentContext()
{
    if (auto *context = environment().context())
        context->makeCurrent();
}

} // namespace OrvTest
