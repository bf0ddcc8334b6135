#include <OrvGL/DrawBuffers.h>

#include <OrvGL/VertexArrayObject.h>

#include "support/ForeignContext.h"
#include "support/GLFixture.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/Shaders.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Command = DrawElementsIndirectCommand;

/// Shows command after command in red, green, blue, by gl_DrawIDARB or, without it, by the base
/// instance, which the tests set to the same number.
const char *const colourPerDraw = R"(
#version 430 core
#extension GL_ARB_shader_draw_parameters : require
in vec2 va_Vertex;
flat out vec4 colour;
const vec4 colours[3] = vec4[](vec4(1, 0, 0, 1), vec4(0, 1, 0, 1), vec4(0, 0, 1, 1));
void main() {
    colour = colours[gl_DrawIDARB];
    gl_Position = vec4(va_Vertex, 0, 1);
}
)";

// Three columns, one pixel wide each, of two triangles each:
//
//     4   5   6   7      y = 1
//     | 0 | 1 | 2 |
//     0   1   2   3      y = -1
class DrawBuffersTest : public GLFixture
{
protected:
    void SetUp() override
    {
        GLFixture::SetUp();
        if (!_device->hasDrawParameters())
            GTEST_SKIP() << "the driver has no gl_DrawIDARB";
        _program = linkProgram(colourPerDraw, showColour);
        _canvas = std::make_unique<Canvas>(3, 1);
        const float third = 1.0f / 3.0f;
        _vao = _device->createVertexArrayObject();
        _vao->registerBO(QStringLiteral("va_Vertex"),
                         makeBuffer<float>(GL_ARRAY_BUFFER, {-1, -1, -third, -1, third, -1, 1, -1,
                                                             -1, 1, -third, 1, third, 1, 1, 1}),
                         2, GL_FLOAT);
        _draw.setVAO(_vao);
        _draw.setIndexedDraw(columns(), 18, GL_UNSIGNED_INT);
        setCommands({{6, 1, 0, 0, 0}, {6, 1, 6, 0, 0}, {6, 1, 12, 0, 0}});
    }

    void TearDown() override
    {
        _canvas.reset();
        GLFixture::TearDown();
    }

    static QSharedPointer<BufferObject> columns()
    {
        return makeBuffer<unsigned>(
            GL_ELEMENT_ARRAY_BUFFER,
            {0, 1, 5, 0, 5, 4, /* second */ 1, 2, 6, 1, 6, 5, /* third */ 2, 3, 7, 2, 7, 6});
    }

    void setCommands(const std::vector<Command> &commands)
    {
        _draw.setDrawElementsIndirectCommands(commands.data(), static_cast<int>(commands.size()));
    }

    std::vector<QRgb> columnsSeen()
    {
        return {_canvas->pixel(0, 0), _canvas->pixel(1, 0), _canvas->pixel(2, 0)};
    }

    GLuint _program = 0;
    std::unique_ptr<Canvas> _canvas;
    QSharedPointer<VertexArrayObject> _vao;
    DrawBuffers _draw{nullptr};
};

TEST(DrawBuffers, StartsEmpty)
{
    const DrawBuffers draw(nullptr);
    EXPECT_FALSE(draw.VAO());
    EXPECT_FALSE(draw.indexBuffer());
    EXPECT_EQ(draw.indexCount(), 0);
    EXPECT_EQ(draw.indexType(), GLenum(GL_UNSIGNED_INT));
    EXPECT_EQ(draw.vertexCount(), 0u);
    EXPECT_EQ(draw.primitiveType(), GLenum(GL_TRIANGLES));
    EXPECT_THAT(draw.commands(), IsEmpty());
}

TEST(DrawBuffers, CopiesTheCommands)
{
    DrawBuffers draw(nullptr);
    std::vector<Command> commands = {{1, 2, 3, -4, 5}, {0xffffffff, 6, 7, 8, 9}};
    const std::vector<Command> given = commands;
    draw.setDrawElementsIndirectCommands(commands.data(), 2);
    commands[0].count = 99;
    commands[1].baseVertex = 99;
    EXPECT_THAT(draw.commands(), ElementsAre(given[0], given[1]));
    draw.setDrawElementsIndirectCommands(nullptr, 0);
    EXPECT_THAT(draw.commands(), IsEmpty());
    draw.setDrawElementsIndirectCommands(nullptr, -1);
    EXPECT_THAT(draw.commands(), IsEmpty());
}

TEST(DrawBuffers, ComparesCommandsByAllFields)
{
    const Command command = {1, 2, 3, 4, 5};
    EXPECT_EQ(command, (Command{1, 2, 3, 4, 5}));
    EXPECT_NE(command, (Command{9, 2, 3, 4, 5}));
    EXPECT_NE(command, (Command{1, 9, 3, 4, 5}));
    EXPECT_NE(command, (Command{1, 2, 9, 4, 5}));
    EXPECT_NE(command, (Command{1, 2, 3, 9, 5}));
    EXPECT_NE(command, (Command{1, 2, 3, 4, 9}));
}

TEST_F(DrawBuffersTest, GivesBackWhatWasSet)
{
    const auto buffer = columns();
    _draw.setIndexedDraw(buffer, 12, GL_UNSIGNED_SHORT);
    _draw.setVertexCount(8);
    _draw.setPrimitiveType(GL_LINES);
    EXPECT_EQ(_draw.VAO(), _vao);
    EXPECT_EQ(_draw.indexBuffer(), buffer);
    EXPECT_EQ(_draw.indexCount(), 12);
    EXPECT_EQ(_draw.indexType(), GLenum(GL_UNSIGNED_SHORT));
    EXPECT_EQ(_draw.vertexCount(), 8u);
    EXPECT_EQ(_draw.primitiveType(), GLenum(GL_LINES));
}

TEST_F(DrawBuffersTest, DrawsEachCommandWithItsNumber)
{
    EXPECT_TRUE(_draw.draw(_program, 0, 3));
    EXPECT_THAT(columnsSeen(), ElementsAre(Red, Green, Blue));
}

TEST_F(DrawBuffersTest, DrawsARunAndNumbersItFromZero)
{
    EXPECT_TRUE(_draw.draw(_program, 1, 1));
    EXPECT_THAT(columnsSeen(), ElementsAre(Black, Red, Black));
    _canvas->clear();
    EXPECT_TRUE(_draw.draw(_program, 1, 2));
    EXPECT_THAT(columnsSeen(), ElementsAre(Black, Red, Green));
}

TEST_F(DrawBuffersTest, DrawsNothingForARunOfNone)
{
    EXPECT_TRUE(_draw.draw(_program, 3, 0));
    EXPECT_THAT(columnsSeen(), ElementsAre(Black, Black, Black));
}

TEST_F(DrawBuffersTest, ReadsIndicesOfEverySize)
{
    const auto shorts = makeBuffer<unsigned short>(GL_ELEMENT_ARRAY_BUFFER, {1, 2, 6, 1, 6, 5});
    const auto bytes = makeBuffer<unsigned char>(GL_ELEMENT_ARRAY_BUFFER, {2, 3, 7, 2, 7, 6});
    setCommands({{6, 1, 0, 0, 0}});
    _draw.setIndexedDraw(shorts, 6, GL_UNSIGNED_SHORT);
    EXPECT_TRUE(_draw.draw(_program, 0, 1));
    EXPECT_THAT(columnsSeen(), ElementsAre(Black, Red, Black));
    _draw.setIndexedDraw(bytes, 6, GL_UNSIGNED_BYTE);
    EXPECT_TRUE(_draw.draw(_program, 0, 1));
    EXPECT_THAT(columnsSeen(), ElementsAre(Black, Red, Red));
}

TEST_F(DrawBuffersTest, AddsTheBaseVertex)
{
    setCommands({{6, 1, 0, 2, 0}}); // the first column's indices, two vertices further
    EXPECT_TRUE(_draw.draw(_program, 0, 1));
    EXPECT_THAT(columnsSeen(), ElementsAre(Black, Black, Red));
}

TEST_F(DrawBuffersTest, DrawsNewCommandsAfterOldOnes)
{
    EXPECT_TRUE(_draw.draw(_program, 0, 3));
    _canvas->clear();
    setCommands({{6, 1, 12, 0, 0}});
    EXPECT_TRUE(_draw.draw(_program, 0, 1));
    EXPECT_THAT(columnsSeen(), ElementsAre(Black, Black, Red));
}

TEST_F(DrawBuffersTest, DrawsOtherPrimitives)
{
    _draw.setPrimitiveType(GL_POINTS);
    // A point between the first two columns' corners, moved into the middle of the second pixel.
    const auto middle = makeBuffer<float>(GL_ARRAY_BUFFER, {0, 0});
    _vao->registerBO(QStringLiteral("va_Vertex"), middle, 2, GL_FLOAT);
    setCommands({{1, 1, 0, 0, 0}});
    EXPECT_TRUE(_draw.draw(_program, 0, 1));
    EXPECT_THAT(columnsSeen(), ElementsAre(Black, Red, Black));
}

TEST_F(DrawBuffersTest, LeavesTheProgramInUseAndNothingElseBound)
{
    EXPECT_TRUE(_draw.draw(_program, 0, 3));
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), _program);
    EXPECT_EQ(integer(GL_VERTEX_ARRAY_BINDING), 0u);
    EXPECT_EQ(integer(GL_DRAW_INDIRECT_BUFFER_BINDING), 0u);
    EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0u);
}

TEST_F(DrawBuffersTest, EmptiesCommandsThatReachBeyondTheIndices)
{
    const MessageCapture log;
    const std::vector<Command> commands = {
        {3, 1, 0xffffffff, 0, 0}, {6, 1, 6, 0, 0}, {7, 1, 12, 0, 0}};
    setCommands(commands);
    EXPECT_TRUE(_draw.draw(_program, 0, 3));
    EXPECT_THAT(columnsSeen(), ElementsAre(Black, Green, Black)) << "and keeps their numbers";
    EXPECT_TRUE(_draw.draw(_program, 0, 3));
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("DrawBuffers: 2 of 3 commands reach beyond the 18 indices there are, "
                            "and are not drawn"));
    EXPECT_THAT(_draw.commands(), ElementsAre(commands[0], commands[1], commands[2]));
}

TEST_F(DrawBuffersTest, HoldsCommandsAgainstWhatTheBufferReallyHolds)
{
    const MessageCapture log;
    const auto buffer = columns();
    _draw.setIndexedDraw(buffer, 18, GL_UNSIGNED_INT);
    EXPECT_TRUE(_draw.draw(_program, 0, 3));
    _canvas->clear();
    const unsigned first[] = {0, 1, 5, 0, 5, 4};
    buffer->uploadGLuintData(first, 6, GL_STATIC_DRAW);
    EXPECT_TRUE(_draw.draw(_program, 0, 3));
    EXPECT_THAT(columnsSeen(), ElementsAre(Red, Black, Black));
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("DrawBuffers: 2 of 3 commands reach beyond the 6 indices there are, "
                            "and are not drawn"));
}

struct Refusal
{
    const char *name;
    std::function<void(DrawBuffers &)> spoil;
    int firstCommand;
    int commandCount;
    std::string reason;
};

TEST_F(DrawBuffersTest, SaysOnceWhyNothingIsDrawn)
{
    const std::vector<Refusal> refusals = {
        {"negative first", [](DrawBuffers &) {}, -1, 1,
         "there are 3 commands, not 1 from number -1 on"},
        {"negative count", [](DrawBuffers &) {}, 0, -1,
         "there are 3 commands, not -1 from number 0 on"},
        {"first beyond", [](DrawBuffers &) {}, 4, 0,
         "there are 3 commands, not 0 from number 4 on"},
        {"run beyond", [](DrawBuffers &) {}, 2, 2, "there are 3 commands, not 2 from number 2 on"},
        {"run that overflows", [](DrawBuffers &) {}, 3, 0x7fffffff,
         "there are 3 commands, not 2147483647 from number 3 on"},
        {"no attributes", [](DrawBuffers &draw) { draw.setVAO({}); }, 0, 3,
         "there are no vertex attributes"},
        {"no indices", [](DrawBuffers &draw) { draw.setIndexedDraw({}, 0, GL_UNSIGNED_INT); }, 0, 3,
         "there is no element buffer"},
        {"index type", [](DrawBuffers &draw) { draw.setIndexedDraw(columns(), 18, GL_FLOAT); }, 0,
         3, "0x1406 is no type of indices"},
    };
    for (const Refusal &refusal : refusals) {
        SCOPED_TRACE(refusal.name);
        DrawBuffers draw(nullptr);
        draw.setVAO(_vao);
        draw.setIndexedDraw(columns(), 18, GL_UNSIGNED_INT);
        draw.setDrawElementsIndirectCommands(_draw.commands().constData(), 3);
        refusal.spoil(draw);
        const MessageCapture log;
        EXPECT_FALSE(draw.draw(_program, refusal.firstCommand, refusal.commandCount));
        EXPECT_FALSE(draw.draw(_program, refusal.firstCommand, refusal.commandCount));
        EXPECT_THAT(log.texts(QtWarningMsg),
                    ElementsAre("DrawBuffers: nothing is drawn: " + refusal.reason));
    }
    EXPECT_THAT(columnsSeen(), ElementsAre(Black, Black, Black));
}

TEST_F(DrawBuffersTest, RefusesAProgramThatIsNotLinked)
{
    const GLuint unlinked = glCreateProgram();
    const MessageCapture log;
    EXPECT_FALSE(_draw.draw(unlinked, 0, 3));
    EXPECT_FALSE(_draw.draw(0, 0, 3));
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("DrawBuffers: nothing is drawn: program " + std::to_string(unlinked) +
                                " is not linked",
                            "DrawBuffers: nothing is drawn: program 0 is not linked"));
}

TEST_F(DrawBuffersTest, SaysItAgainAfterADrawThatWorked)
{
    const MessageCapture log;
    EXPECT_FALSE(_draw.draw(_program, 0, 4));
    EXPECT_TRUE(_draw.draw(_program, 0, 3));
    EXPECT_FALSE(_draw.draw(_program, 0, 4));
    EXPECT_EQ(log.texts(QtWarningMsg).size(), 2u);
}

TEST_F(DrawBuffersTest, RefusesBuffersOfAnotherContext)
{
    const auto other = makeContext();
    ASSERT_TRUE(other && other->makeCurrent());
    const MessageCapture log;
    EXPECT_FALSE(_draw.draw(_program, 0, 3));
    EXPECT_THAT(log.texts(QtWarningMsg), ElementsAre("DrawBuffers: nothing is drawn: the element "
                                                     "buffer is of another OpenGL context"));
    ASSERT_TRUE(_context->makeCurrent());
    EXPECT_TRUE(_draw.draw(_program, 0, 3));
    EXPECT_THAT(columnsSeen(), ElementsAre(Red, Green, Blue));
}

TEST(DrawBuffers, DrawsNothingWithoutAContext)
{
    DrawBuffers draw(nullptr);
    const MessageCapture log;
    EXPECT_FALSE(draw.draw(1, 0, 0));
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("DrawBuffers: nothing is drawn: no OpenGL context is current"));
}

TEST(DrawBuffers, DrawsNothingWithoutMultiDrawIndirect)
{
    const auto es = ForeignContext::make(ForeignContext::Kind::OpenGLES);
    ASSERT_TRUE(es && es->makeCurrent());
    DrawBuffers draw(nullptr);
    const MessageCapture log;
    EXPECT_FALSE(draw.draw(1, 0, 0));
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("DrawBuffers: nothing is drawn: OpenGL 4.3 or "
                            "ARB_multi_draw_indirect is needed, this is " +
                            OpenGLDeviceContext::current()->description().toStdString()));
}

} // namespace
