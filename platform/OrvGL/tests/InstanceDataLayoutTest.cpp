// The layout that InstanceDataPlan computes, against the one that the driver's shader compiler
// does.

#include <OrvCore/InstanceDataPlan.h>

#include "support/GLFixture.h"

#include <QtCore/QByteArray>

#include <random>
#include <string>
#include <vector>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using Plan = InstanceDataPlan;

const char *glslNameOf(Plan::DataType type)
{
    static const char *const names[] = {"uint",  "int",   "ivec2", "ivec3",  "ivec4", "uint",
                                        "uvec2", "uvec3", "uvec4", "double", "dvec2", "dvec3",
                                        "dvec4", "float", "vec2",  "vec3",   "vec4",  "mat4"};
    return names[type];
}

// A compute program that declares an array of the plan's records, and reads every member, so that
// none is optimised away.
GLuint programDeclaring(const Plan &plan)
{
    std::string members;
    std::string sum;
    for (const Plan::Member &member : plan.members()) {
        const std::string name = member.name.toStdString();
        members += std::string("    ") + glslNameOf(member.type) + " " + name + ";\n";
        const std::string first =
            member.type == Plan::Mat4 ? "[0][0]"
            : Plan::sizeOf(member.type) > 4 && glslNameOf(member.type) != std::string("double")
                ? ".x"
                : "";
        sum += " + float(records[1]." + name + first + ")";
    }
    const std::string source = "#version 430 core\n"
                               "layout(local_size_x = 1) in;\n"
                               "struct Record {\n" +
                               members +
                               "};\n"
                               "layout(std430, binding = 0) buffer Records { Record records[]; };\n"
                               "layout(std430, binding = 1) buffer Result { float result; };\n"
                               "void main() { result = 0.0" +
                               sum + "; }\n";
    const char *const text = source.c_str();
    const GLuint program = glCreateShaderProgramv(GL_COMPUTE_SHADER, 1, &text);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    char log[2048] = "";
    glGetProgramInfoLog(program, sizeof(log), nullptr, log);
    EXPECT_TRUE(linked) << log << source;
    return program;
}

GLint propertyOf(GLuint program, const QByteArray &variable, GLenum property)
{
    const GLuint index =
        glGetProgramResourceIndex(program, GL_BUFFER_VARIABLE, variable.constData());
    EXPECT_NE(index, GL_INVALID_INDEX) << variable.constData();
    GLint value = -1;
    if (index != GL_INVALID_INDEX)
        glGetProgramResourceiv(program, GL_BUFFER_VARIABLE, index, 1, &property, 1, nullptr,
                               &value);
    return value;
}

void expectSameLayout(const Plan &plan)
{
    const GLuint program = programDeclaring(plan);
    for (const Plan::Member &member : plan.members()) {
        const QByteArray variable = "records[0]." + member.name.toLatin1();
        SCOPED_TRACE(std::string(glslNameOf(member.type)) + " " + variable.toStdString());
        EXPECT_EQ(member.offset, propertyOf(program, variable, GL_OFFSET));
        EXPECT_EQ(plan.stride(), propertyOf(program, variable, GL_TOP_LEVEL_ARRAY_STRIDE));
    }
    glDeleteProgram(program);
}

class InstanceDataLayoutTest : public GLFixture
{};

TEST_F(InstanceDataLayoutTest, IsTheDriversForEveryTypeBehindAFloat)
{
    for (int type = Plan::Texture; type <= Plan::Mat4; ++type) {
        Plan plan(QStringLiteral("Plan"));
        plan.addMember(Plan::Float, QStringLiteral("a"));
        plan.addMember(static_cast<Plan::DataType>(type), QStringLiteral("b"));
        plan.addMember(Plan::Float, QStringLiteral("c"));
        expectSameLayout(plan);
    }
}

TEST_F(InstanceDataLayoutTest, IsTheDriversForRandomRecords)
{
    constexpr unsigned Seed = 20220607;
    SCOPED_TRACE("seed " + std::to_string(Seed));
    std::mt19937 random(Seed);
    for (int round = 0; round < 20; ++round) {
        Plan plan(QStringLiteral("Plan"));
        const int count = 1 + static_cast<int>(random() % 9);
        for (int i = 0; i < count; ++i)
            plan.addMember(static_cast<Plan::DataType>(random() % (Plan::Mat4 + 1)),
                           QStringLiteral("m%1").arg(i));
        expectSameLayout(plan);
    }
}

} // namespace
