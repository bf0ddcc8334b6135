/// \file
/// The one OpenGL context of a test program.
#pragma once

#include <gtest/gtest.h>

namespace OrvTest {

/// A test that needs an OpenGL context current on its thread.
///
/// The context is made off-screen when the first such test of the program runs,
/// and serves them all: what a test binds or caches there, the next one finds.
/// Without one the test fails with the reason. A test that leaves an OpenGL
/// error behind fails too.
class GLTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;
};

/// No OpenGL context is current on the thread while the object lives.
class NoCurrentContext
{
public:
    NoCurrentContext();
    ~NoCurrentContext();
    NoCurrentContext(const NoCurrentContext &) = delete;
    NoCurrentContext &operator=(const NoCurrentContext &) = delete;
};

} // namespace OrvTest
