#include <OrvGL/VertexArrayObject.h>

#include "support/ForeignContext.h"
#include "support/GLFixture.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/Shaders.h"

#include <gmock/gmock.h>

#include <string>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A program that draws one point and shows `expression` as its colour, of the attribute
/// `declaration`.
GLuint showing(const std::string &declaration, const std::string &expression)
{
    const std::string source = "#version 430 core\n" + declaration +
                               ";\n"
                               "flat out vec4 colour;\n"
                               "void main() {\n"
                               "    colour = " +
                               expression +
                               ";\n"
                               "    gl_Position = vec4(0, 0, 0, 1);\n"
                               "}\n";
    return linkProgram(source.c_str(), showColour);
}

class VertexArrayObjectTest : public GLFixture
{
protected:
    /// The colour of the point that vertex `vertex` gives.
    QRgb drawn(GLuint program, int vertex = 0)
    {
        const Canvas canvas(1, 1);
        glUseProgram(program);
        EXPECT_TRUE(_vao.bind(program));
        glDrawArrays(GL_POINTS, vertex, 1);
        _vao.release();
        return canvas.pixel(0, 0);
    }

    template <typename Value>
    void registerValues(const char *name, std::initializer_list<Value> values, int components,
                        GLenum type)
    {
        _vao.registerBO(QString::fromLatin1(name), makeBuffer<Value>(GL_ARRAY_BUFFER, values),
                        components, type);
    }

    VertexArrayObject _vao;
};

TEST_F(VertexArrayObjectTest, ListsAttributesInTheOrderOfFirstRegistration)
{
    const auto first = makeBuffer<float>(GL_ARRAY_BUFFER, {1, 2, 3});
    const auto second = makeBuffer<float>(GL_ARRAY_BUFFER, {1, 2});
    _vao.registerBO(QStringLiteral("va_Vertex"), first, 3, GL_FLOAT);
    _vao.registerBO(QStringLiteral("va_TexCoord"), second, 2, GL_FLOAT);
    _vao.registerBO(QStringLiteral("va_Vertex"), second, 1, GL_UNSIGNED_INT);
    ASSERT_EQ(_vao.attributes().size(), 2);
    EXPECT_EQ(_vao.attributes()[0].name, QStringLiteral("va_Vertex"));
    EXPECT_EQ(_vao.attributes()[0].buffer, second);
    EXPECT_EQ(_vao.attributes()[0].components, 1);
    EXPECT_EQ(_vao.attributes()[0].type, GLenum(GL_UNSIGNED_INT));
    EXPECT_EQ(_vao.attributes()[1].name, QStringLiteral("va_TexCoord"));
}

TEST_F(VertexArrayObjectTest, FeedsFloatsOneVertexAfterTheOther)
{
    registerValues<float>("va", {1, 0, 0, 0, 1, 0}, 3, GL_FLOAT);
    const GLuint program = showing("in vec3 va", "vec4(va, 1)");
    EXPECT_EQ(drawn(program, 0), Red);
    EXPECT_EQ(drawn(program, 1), Green);
}

TEST_F(VertexArrayObjectTest, FeedsIntegersToFloatsAsTheNumbersTheyAre)
{
    registerValues<unsigned char>("va", {0, 1, 255, 0}, 4, GL_UNSIGNED_BYTE);
    EXPECT_EQ(drawn(showing("in vec4 va", "vec4(va.x, va.y, va.z - 254, 1)")), qRgb(0, 255, 255));
}

TEST_F(VertexArrayObjectTest, FeedsIntegersToIntegersWithoutLoss)
{
    // As a float, 2^24 + 1 would be 2^24.
    registerValues<unsigned int>("va", {16777217}, 1, GL_UNSIGNED_INT);
    EXPECT_EQ(drawn(showing("in uint va", "va == 16777217u ? vec4(0, 1, 0, 1) : vec4(1, 0, 0, 1)")),
              Green);
    registerValues<short>("va", {-5, 7}, 2, GL_SHORT);
    EXPECT_EQ(
        drawn(showing("in ivec2 va", "va == ivec2(-5, 7) ? vec4(0, 1, 0, 1) : vec4(1, 0, 0, 1)")),
        Green);
}

TEST_F(VertexArrayObjectTest, FeedsDoublesWithoutLoss)
{
    registerValues<double>("va", {1.0 + 0x1p-40}, 1, GL_DOUBLE);
    EXPECT_EQ(drawn(showing("in double va", "va > 1.0lf ? vec4(0, 1, 0, 1) : vec4(1, 0, 0, 1)")),
              Green);
}

TEST_F(VertexArrayObjectTest, ServesProgramsThatPlaceAttributesDifferently)
{
    registerValues<float>("first", {1, 0, 0}, 3, GL_FLOAT);
    registerValues<float>("second", {0, 0, 1}, 3, GL_FLOAT);
    const GLuint low = showing("layout(location = 0) in vec3 first;"
                               "layout(location = 1) in vec3 second",
                               "vec4(first, 1)");
    const GLuint high = showing("layout(location = 5) in vec3 first;"
                                "layout(location = 0) in vec3 second",
                                "vec4(first + second, 1)");
    EXPECT_EQ(drawn(low), Red);
    EXPECT_EQ(drawn(high), qRgb(255, 0, 255));
    EXPECT_EQ(drawn(low), Red);
}

TEST_F(VertexArrayObjectTest, SkipsAttributesThatTheProgramLacks)
{
    registerValues<float>("va", {0, 1, 0}, 3, GL_FLOAT);
    registerValues<float>("va_Normal", {1, 1, 1}, 3, GL_FLOAT);
    EXPECT_EQ(drawn(showing("in vec3 va", "vec4(va, 1)")), Green);
}

TEST_F(VertexArrayObjectTest, CutsConnectionsThatTheNextProgramDoesNotUse)
{
    registerValues<float>("va", {0, 1, 0}, 3, GL_FLOAT);
    drawn(showing("layout(location = 2) in vec3 va", "vec4(va, 1)"));
    const GLuint without = showing("layout(location = 2) in vec4 other", "other");
    ASSERT_TRUE(_vao.bind(without));
    GLint enabled = GL_TRUE;
    glGetVertexAttribiv(2, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
    EXPECT_FALSE(enabled);
}

// An attribute that is not fed reads the generic value of its location.
TEST_F(VertexArrayObjectTest, LeavesWithoutValuesWhatCannotBeFed)
{
    const MessageCapture log;
    const GLuint floats = showing("layout(location = 3) in vec4 va", "va");
    glVertexAttrib4f(3, 0, 0, 1, 1);
    EXPECT_EQ(drawn(floats), Blue) << "not registered";
    _vao.registerBO(QStringLiteral("va"), {}, 3, GL_FLOAT);
    EXPECT_EQ(drawn(floats), Blue) << "null buffer";
    _vao.registerBO(QStringLiteral("va"), _device->createBufferObject(), 3, GL_FLOAT);
    EXPECT_EQ(drawn(floats), Blue) << "empty buffer";
    registerValues<float>("va", {1, 1, 1}, 3, GL_TRIANGLES);
    EXPECT_EQ(drawn(floats), Blue) << "unknown type";
    EXPECT_THAT(log.messages(), IsEmpty());
    registerValues<float>("va", {1, 1, 1, 1, 1}, 5, GL_FLOAT);
    EXPECT_EQ(drawn(floats), Blue) << "too many components";
    EXPECT_THAT(
        log.texts(QtWarningMsg),
        ElementsAre("VertexArrayObject: attribute \"va\" has 5 values per vertex, cannot be "
                    "drawn"));
}

TEST_F(VertexArrayObjectTest, DoesNotFeedFloatsToIntegers)
{
    registerValues<float>("va", {1, 1, 1, 1}, 4, GL_FLOAT);
    const GLuint program = showing("in ivec4 va", "vec4(va)");
    const Canvas canvas(1, 1);
    ASSERT_TRUE(_vao.bind(program));
    GLint enabled = GL_TRUE;
    glGetVertexAttribiv(static_cast<GLuint>(glGetAttribLocation(program, "va")),
                        GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
    EXPECT_FALSE(enabled);
}

TEST_F(VertexArrayObjectTest, LeavesOnlyTheVertexArrayBound)
{
    registerValues<float>("va", {0, 1, 0}, 3, GL_FLOAT);
    ASSERT_TRUE(_vao.bind(showing("in vec3 va", "vec4(va, 1)")));
    EXPECT_NE(integer(GL_VERTEX_ARRAY_BINDING), 0u);
    EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0u);
    _vao.release();
    EXPECT_EQ(integer(GL_VERTEX_ARRAY_BINDING), 0u);
}

TEST(VertexArrayObject, NeedsDesktopOpenGLToBind)
{
    VertexArrayObject vao;
    const MessageCapture log;
    EXPECT_FALSE(vao.bind(1));
    vao.release();
    const auto es = ForeignContext::make(ForeignContext::Kind::OpenGLES);
    ASSERT_TRUE(es && es->makeCurrent());
    EXPECT_FALSE(vao.bind(1));
    const char *const message = "VertexArrayObject::bind: no OpenGL context with vertex arrays is "
                                "current";
    EXPECT_THAT(log.texts(QtWarningMsg), ElementsAre(message, message));
}

} // namespace
