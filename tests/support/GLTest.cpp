#include "GLTest.h"

#include <OrvGL/HeadlessContext.h>
#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QString>

namespace OrvTest {

namespace {

/// What the program's only context is, or why there is none.
struct SharedContext
{
    QString error;
    QSharedPointer<Halvard::Orv::HeadlessContext> context =
        Halvard::Orv::HeadlessContext::create(&error);
};

/// Lives until the process ends: GL objects that the library caches do, too.
SharedContext &sharedContext()
{
    static SharedContext shared;
    return shared;
}

} // namespace

void GLTest::SetUp()
{
    const SharedContext &shared = sharedContext();
    ASSERT_TRUE(shared.context) << "no OpenGL context: " << shared.error.toStdString();
    ASSERT_TRUE(shared.context->makeCurrent());
}

void GLTest::TearDown()
{
    if (sharedContext().context)
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "the test left an OpenGL error behind";
}

NoCurrentContext::NoCurrentContext()
{
    if (sharedContext().context)
        sharedContext().context->doneCurrent();
}

NoCurrentContext::~NoCurrentContext()
{
    if (sharedContext().context)
        sharedContext().context->makeCurrent();
}

} // namespace OrvTest
