#include "support/ForeignContext.h"
#include "support/GLFixture.h"
#include "support/MessageCapture.h"

#include <gmock/gmock.h>

#include <QtCore/QByteArray>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DebugOutputTest : public GLFixture
{
protected:
    static void say(GLenum type, GLenum severity, const char *text)
    {
        glDebugMessageInsert(GL_DEBUG_SOURCE_APPLICATION, type, 1, severity, -1, text);
    }
};

TEST_F(DebugOutputTest, ReportsAWrongCallAsAWarning)
{
    const MessageCapture log;
    glEnable(GL_TRIANGLES); // not a capability
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM));
    const auto warnings = log.texts(QtWarningMsg);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_THAT(warnings[0], ::testing::StartsWith("OpenGL: "));
}

TEST_F(DebugOutputTest, SortsMessagesBySeverity)
{
    // Messages of low severity are off until an application asks for them.
    glDebugMessageControl(GL_DONT_CARE, GL_DONT_CARE, GL_DONT_CARE, 0, nullptr, GL_TRUE);
    const MessageCapture log;
    say(GL_DEBUG_TYPE_OTHER, GL_DEBUG_SEVERITY_HIGH, "high");
    say(GL_DEBUG_TYPE_PERFORMANCE, GL_DEBUG_SEVERITY_MEDIUM, "medium");
    say(GL_DEBUG_TYPE_OTHER, GL_DEBUG_SEVERITY_LOW, "low");
    say(GL_DEBUG_TYPE_OTHER, GL_DEBUG_SEVERITY_NOTIFICATION, "notification");
    say(GL_DEBUG_TYPE_ERROR, GL_DEBUG_SEVERITY_LOW, "error, low\n");
    EXPECT_THAT(log.messages(), ElementsAre(Message{QtWarningMsg, "OpenGL: high"},
                                            Message{QtDebugMsg, "OpenGL: medium"},
                                            Message{QtDebugMsg, "OpenGL: low"},
                                            Message{QtWarningMsg, "OpenGL: error, low"}));
}

TEST_F(DebugOutputTest, TakesNoFormatsFromMessages)
{
    const MessageCapture log;
    say(GL_DEBUG_TYPE_ERROR, GL_DEBUG_SEVERITY_HIGH, "100%s %n");
    EXPECT_THAT(log.texts(QtWarningMsg), ElementsAre("OpenGL: 100%s %n"));
}

void GLAPIENTRY countMessage(GLenum, GLenum, GLuint, GLenum, GLsizei, const GLchar *,
                             const void *counter)
{
    ++*static_cast<int *>(const_cast<void *>(counter));
}

TEST(DebugOutput, LeavesTheCallbackOfTheApplicationAlone)
{
    const auto context = ForeignContext::make();
    ASSERT_TRUE(context && context->makeCurrent());
    int count = 0;
    glDebugMessageCallback(&countMessage, &count);
    glEnable(GL_DEBUG_OUTPUT);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    const MessageCapture log;
    ASSERT_TRUE(OpenGLDeviceContext::current());
    count = 0; // what meeting the context itself may have caused
    glDebugMessageInsert(GL_DEBUG_SOURCE_APPLICATION, GL_DEBUG_TYPE_ERROR, 1,
                         GL_DEBUG_SEVERITY_HIGH, -1, "mine");
    EXPECT_EQ(count, 1);
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST(DebugOutput, IsConnectedToContextsOfOthers)
{
    const auto context = ForeignContext::make();
    ASSERT_TRUE(context && context->makeCurrent());
    ASSERT_TRUE(OpenGLDeviceContext::current());
    const MessageCapture log;
    glDebugMessageInsert(GL_DEBUG_SOURCE_APPLICATION, GL_DEBUG_TYPE_ERROR, 1,
                         GL_DEBUG_SEVERITY_HIGH, -1, "heard");
    EXPECT_THAT(log.texts(QtWarningMsg), ElementsAre("OpenGL: heard"));
}

} // namespace
