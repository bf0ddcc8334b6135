#include "GLFixture.h"

#include <QtCore/QString>

using namespace Halvard::Orv;

namespace OrvTest {

std::unique_ptr<HeadlessContext> makeContext(const HeadlessContext *shareWith)
{
    QString error;
    auto context = HeadlessContext::create(&error, shareWith);
    EXPECT_TRUE(context) << error.toStdString();
    return context;
}

void GLFixture::SetUp()
{
    _context = makeContext();
    ASSERT_TRUE(_context);
    ASSERT_TRUE(_context->makeCurrent());
    _device = OpenGLDeviceContext::current();
    ASSERT_TRUE(_device);
}

void GLFixture::TearDown()
{
    if (OpenGLDeviceContext::current()) {
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}

} // namespace OrvTest
