#include <OrvGL/HeadlessContext.h>

#include "support/GLFixture.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"

#include <gmock/gmock.h>

#include <QtCore/QWeakPointer>

#include <atomic>
#include <thread>
#include <vector>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::ElementsAre;

TEST(HeadlessContext, IsACoreContextOfVersion43OrHigher)
{
    QString error = QStringLiteral("from earlier");
    const auto context = HeadlessContext::create(&error);
    ASSERT_TRUE(context) << error.toStdString();
    EXPECT_TRUE(error.isEmpty());
    ASSERT_TRUE(context->makeCurrent());
    EXPECT_GE(OpenGLDeviceContext::current()->version(), 43);
    EXPECT_EQ(integer(GL_CONTEXT_PROFILE_MASK), GLuint(GL_CONTEXT_CORE_PROFILE_BIT));
    EXPECT_TRUE(OpenGLDeviceContext::current()->hasMultiDrawIndirect());
}

TEST(HeadlessContext, NeedsNobodyToHearTheError)
{
    EXPECT_TRUE(HeadlessContext::create());
}

TEST(HeadlessContext, SaysWhatItIs)
{
    const auto context = makeContext();
    ASSERT_TRUE(context && context->makeCurrent());
    const QString description = context->description();
    EXPECT_TRUE(description.startsWith(OpenGLDeviceContext::current()->description()));
    EXPECT_TRUE(description.contains(QLatin1String("(EGL, "))) << description.toStdString();
}

TEST(HeadlessContext, IsNotCurrentBeforeItIsMadeSo)
{
    const auto context = makeContext();
    ASSERT_TRUE(context);
    EXPECT_FALSE(OpenGLDeviceContext::current());
    ASSERT_TRUE(context->makeCurrent());
    EXPECT_TRUE(OpenGLDeviceContext::current());
    context->doneCurrent();
    EXPECT_FALSE(OpenGLDeviceContext::current());
}

TEST(HeadlessContext, LeavesCurrentWhatIsCurrentWhenAnotherIsMade)
{
    const auto first = makeContext();
    ASSERT_TRUE(first && first->makeCurrent());
    const auto device = OpenGLDeviceContext::current();
    const auto second = makeContext();
    EXPECT_EQ(OpenGLDeviceContext::current(), device);
    second->doneCurrent(); // is not current
    EXPECT_EQ(OpenGLDeviceContext::current(), device);
}

TEST(HeadlessContext, LeavesNoneCurrentWhenTheCurrentOneIsDestroyed)
{
    auto context = makeContext();
    ASSERT_TRUE(context && context->makeCurrent());
    context.reset();
    EXPECT_FALSE(OpenGLDeviceContext::current());
}

TEST(HeadlessContext, LeavesTheCurrentOneWhenAnotherIsDestroyed)
{
    auto first = makeContext();
    const auto second = makeContext();
    ASSERT_TRUE(second && second->makeCurrent());
    const auto device = OpenGLDeviceContext::current();
    first.reset();
    EXPECT_EQ(OpenGLDeviceContext::current(), device);
}

TEST(HeadlessContext, LeavesNothingOfItselfBehind)
{
    auto context = makeContext();
    ASSERT_TRUE(context && context->makeCurrent());
    const QWeakPointer<OpenGLDeviceContext> device = OpenGLDeviceContext::current();
    EXPECT_TRUE(device);
    context.reset();
    EXPECT_FALSE(device);
}

TEST(HeadlessContext, WorksOneAfterAnother)
{
    for (int i = 0; i < 10; ++i) {
        const auto context = makeContext();
        ASSERT_TRUE(context && context->makeCurrent());
        const auto buffer = makeBuffer<int>(GL_ARRAY_BUFFER, {i});
        EXPECT_EQ(buffer->download(), bytesOf<int>({i}));
    }
}

TEST(HeadlessContext, WorksOnSeveralThreadsAtOnce)
{
    constexpr int ThreadCount = 4;
    std::atomic<int> sound{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < ThreadCount; ++i) {
        threads.emplace_back([i, &sound] {
            const auto context = makeContext();
            if (!context || !context->makeCurrent())
                return;
            const auto buffer = makeBuffer<int>(GL_ARRAY_BUFFER, {i, i + 1});
            if (buffer->download() == bytesOf<int>({i, i + 1}))
                ++sound;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(sound, ThreadCount);
}

TEST(HeadlessContext, IsCurrentOnOneThreadAtATime)
{
    const auto context = makeContext();
    ASSERT_TRUE(context && context->makeCurrent());
    const MessageCapture log;
    bool secondThread = true;
    std::thread([&] { secondThread = context->makeCurrent(); }).join();
    EXPECT_FALSE(secondThread);
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("HeadlessContext::makeCurrent: eglMakeCurrent failed "
                            "(EGL_BAD_ACCESS)"));
    context->doneCurrent();
    std::thread([&] {
        secondThread = context->makeCurrent() && OpenGLDeviceContext::current();
        context->doneCurrent();
    }).join();
    EXPECT_TRUE(secondThread);
}

} // namespace
