#include "support/ForeignContext.h"
#include "support/MessageCapture.h"

#include <OrvGL/HeadlessContext.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/TextureManager.h>

#include <gmock/gmock.h>

#include <QtCore/QString>
#include <QtGui/QColor>

#include <string>

using namespace Halvard::Orv;

namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const char *const advice = ". Install a driver; libegl1, libegl-mesa0, libgl1 and libgl1-mesa-dri "
                           "make a software one.";

// Everything that asks for a context must find that there is none, and live.
void expectNoContext()
{
    EXPECT_FALSE(OpenGLDeviceContext::current());
    EXPECT_EQ(TextureManager::Instance().colorTexture(Qt::white), nullptr);
}

// Run with __EGL_VENDOR_LIBRARY_FILENAMES naming no driver.
TEST(MissingDriver, IsExplained)
{
    if (!qEnvironmentVariableIsSet("__EGL_VENDOR_LIBRARY_FILENAMES"))
        GTEST_SKIP() << "only ctest hides the drivers";
    QString error;
    EXPECT_FALSE(HeadlessContext::create(&error));
    EXPECT_THAT(error.toStdString(), AllOf(StartsWith("No OpenGL 4.3 context can be made: "),
                                           HasSubstr("default display: "),
                                           HasSubstr(" failed (EGL_"), EndsWith(advice)));
    expectNoContext();
}

// Run with a file in the place of libEGL.so.1 that is no library.
TEST(MissingLibrary, IsExplained)
{
    if (!qEnvironmentVariable("LD_LIBRARY_PATH").contains(QLatin1String("/broken")))
        GTEST_SKIP() << "only ctest hides libEGL";
    QString error;
    EXPECT_FALSE(HeadlessContext::create(&error));
    EXPECT_THAT(error.toStdString(), AllOf(StartsWith("No OpenGL 4.3 context can be made: "
                                                      "libEGL.so.1 cannot be loaded ("),
                                           EndsWith(std::string(")") + advice)));
    expectNoContext();
}

// Run with a file in the place of libGLESv2.so.2 that is no library.
TEST(MissingESLibrary, LeavesAContextThatCannotBeCalled)
{
    if (!qEnvironmentVariable("LD_LIBRARY_PATH").contains(QLatin1String("/broken-es")))
        GTEST_SKIP() << "only ctest hides libGLESv2";
    const auto es = OrvTest::ForeignContext::make(OrvTest::ForeignContext::Kind::OpenGLES);
    ASSERT_TRUE(es && es->makeCurrent());
    {
        const OrvTest::MessageCapture messages;
        expectNoContext();
        EXPECT_THAT(messages.texts(QtWarningMsg),
                    ::testing::ElementsAre("OpenGL cannot be called: libGLESv2.so.2 cannot be "
                                           "loaded; install libgles2"));
    }

    // Another context of the process is not the worse for it.
    const auto desktop = OrvTest::ForeignContext::make();
    ASSERT_TRUE(desktop && desktop->makeCurrent());
    EXPECT_TRUE(OpenGLDeviceContext::current());
}

} // namespace
