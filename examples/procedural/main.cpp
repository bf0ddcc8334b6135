// A model made by hand: hills in the sea, drawn into a picture:  procedural OUT.png
//
// Two material groups with different flags become two batches, so that the water can be drawn
// after the land and blended over it.
#include <OrvCore/InstanceDataCollection.h>
#include <OrvCore/InstanceDataPlan.h>
#include <OrvCore/InstanceDataRegistry.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/HeadlessContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvModel/ModelBuilder.h>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtGui/QImage>
#include <QtGui/QMatrix4x4>
#include <cmath>
#include <vector>

using namespace Halvard::Orv;

// The batching key of a group. Batches are drawn in the order of their keys.
enum Batch : quint64
{
    Opaque = 0,
    Blended = 1
};

const char VertexShader[] = R"(#version 430
in vec3 va_Vertex;
in vec3 va_Normal;
layout(location = 0) uniform mat4 camera;
out vec3 normal;

void main()
{
    normal = -va_Normal; // generated ones point to where corners run clockwise: down, here
    gl_Position = camera * vec4(va_Vertex, 1.0);
})";

const char FragmentShader[] = R"(#version 430
struct Surface { vec4 colour; };
layout(std430, binding = 0) readonly buffer Surfaces { Surface surfaces[]; };
in vec3 normal;
out vec4 colour;

void main()
{
    float light = 0.3 + 0.7 * max(dot(normalize(normal), normalize(vec3(-0.6, 1.0, 0.3))), 0.0);
    vec4 surface = surfaces[0].colour; // each batch has one group, and so one record
    colour = vec4(surface.rgb * light, surface.a);
})";

// The layout of our own records, which the shader's struct Surface repeats.
void registerSurface()
{
    auto *plan = new InstanceDataPlan("Surface"); // the registry takes it over
    plan->addMember(InstanceDataPlan::Vec4, "colour");
    InstanceDataRegistry::Instance().registerPlan(plan);
}

void addGroup(ModelBuilder &builder, const QString &name, Batch batch, const QVector4D &colour)
{
    const float values[] = {colour.x(), colour.y(), colour.z(), colour.w()};
    InstanceData record("Surface");
    record.set("colour", values, sizeof(values));
    builder.createMaterialGroup(name, record, -1, batch); // -1: numbered by the builder
}

// A square of 8 by 8 around the origin, Steps quads to a side, at height(x, z).
template <typename Height>
void addField(ModelBuilder &builder, const QString &group, Height height, unsigned &vertices,
              unsigned &faces)
{
    constexpr unsigned Steps = 80;
    constexpr unsigned Row = Steps + 1;
    std::vector<float> positions;
    for (unsigned z = 0; z < Row; ++z)
        for (unsigned x = 0; x < Row; ++x) {
            const float right = 8 * float(x) / Steps - 4;
            const float front = 8 * float(z) / Steps - 4;
            positions.insert(positions.end(), {right, height(right, front), front});
        }
    std::vector<unsigned> corners, counts, numbers;
    for (unsigned z = 0; z < Steps; ++z)
        for (unsigned x = 0; x < Steps; ++x) {
            const unsigned first = vertices + z * Row + x; // counter-clockwise, seen from above
            corners.insert(corners.end(), {first, first + Row, first + Row + 1, first + 1});
            counts.push_back(4);
            numbers.push_back(faces++);
        }
    builder.addValuesToVertexAttribute("va_Vertex", positions.size(), positions.data(), GL_FLOAT);
    builder.addIndicesToVertexAttribute("va_Vertex", corners.size(), corners.data());
    builder.addVertexCountsToFaces(counts.size(), counts.data());
    builder.addFacesToMaterialGroup(group, numbers.size(), numbers.data(), QString());
    vertices += Row * Row;
}

void buildIsland(ModelBuilder &builder)
{
    addGroup(builder, "land", Opaque, {0.45f, 0.6f, 0.25f, 1});
    addGroup(builder, "water", Blended, {0.2f, 0.5f, 0.8f, 0.6f});
    builder.createVertexAttribute("va_Vertex", 3, GL_FLOAT, 0, 0);
    builder.generateNormals("va_Normal");
    unsigned vertices = 0, faces = 0; // added so far
    const auto hills = [](float x, float z) {
        return 2.5f * std::exp(-0.25f * (x * x + z * z)) +
               0.3f * std::sin(2 * x) * std::cos(2 * z) - 0.8f;
    };
    addField(builder, "land", hills, vertices, faces);
    addField(
        builder, "water", [](float, float) { return 0.0f; }, vertices, faces);
}

unsigned makeProgram()
{
    const unsigned program = glCreateProgram();
    const auto attach = [program](unsigned type, const char *text) {
        const unsigned shader = glCreateShader(type);
        glShaderSource(shader, 1, &text, nullptr);
        glCompileShader(shader); // Qt's logger hears what the compiler has to say
        glAttachShader(program, shader);
    };
    attach(GL_VERTEX_SHADER, VertexShader);
    attach(GL_FRAGMENT_SHADER, FragmentShader);
    glLinkProgram(program);
    return program;
}

void addBuffer(unsigned attachment, unsigned format, QSize size)
{
    unsigned buffer = 0;
    glGenRenderbuffers(1, &buffer);
    glBindRenderbuffer(GL_RENDERBUFFER, buffer);
    glRenderbufferStorage(GL_RENDERBUFFER, format, size.width(), size.height());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, buffer);
}

QImage draw(GPUModel &model, QSize size)
{
    unsigned framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    addBuffer(GL_COLOR_ATTACHMENT0, GL_RGBA8, size);
    addBuffer(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, size);
    glViewport(0, 0, size.width(), size.height());
    glEnable(GL_DEPTH_TEST);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glClearColor(0.75f, 0.85f, 0.95f, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);

    QMatrix4x4 camera;
    camera.perspective(40, float(size.width()) / float(size.height()), 1, 100);
    camera.lookAt({6, 7, 11}, {0, 0, 0}, {0, 1, 0});
    const unsigned program = makeProgram();
    glProgramUniformMatrix4fv(program, 0, 1, GL_FALSE, camera.constData());
    for (int bundle = 0; bundle < model.bundleCount(); ++bundle) {
        const QByteArray records = model.materials(bundle)->pack();
        unsigned buffer = 0;
        glGenBuffers(1, &buffer);
        glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 0, buffer);
        glBufferData(GL_SHADER_STORAGE_BUFFER, records.size(), records.constData(), GL_STATIC_DRAW);
        if (model.key(bundle) == Blended)
            glEnable(GL_BLEND);
        model.bundle(bundle)->draw(program, 0, model.bundle(bundle)->commands().size());
    }

    QImage picture(size, QImage::Format_RGBA8888);
    glReadPixels(0, 0, size.width(), size.height(), GL_RGBA, GL_UNSIGNED_BYTE, picture.bits());
    return picture.mirrored(); // the first row of OpenGL is the lowest
}

int fail(const QString &sentence)
{
    qCritical("%s", qPrintable(sentence));
    return 1;
}

int main(int count, char **arguments)
{
    QLoggingCategory::setFilterRules("default.debug=false"); // what welding did, for example
    if (count != 2)
        return fail("Usage: procedural OUT.png");
    QString error;
    const auto context = HeadlessContext::create(&error);
    if (!context || !context->makeCurrent())
        return fail("No OpenGL: " + error);

    registerSurface();
    // Groups whose flags agree in these bits share a batch. Without an allocator of ours the
    // builder uses the library's.
    ModelBuilder builder({}, Blended);
    buildIsland(builder);
    GPUModel model;
    // Records for the instances, a member for the group's number: we need neither.
    builder.upload(&model, InstanceData(), "va_Vertex", QString(), GL_STATIC_DRAW, GL_TRIANGLES);
    if (model.bundleCount() != 2)
        return fail("OpenGL has no room for the model.");
    if (!draw(model, QSize(640, 480)).save(QFile::decodeName(arguments[1])))
        return fail("The picture cannot be written.");
}
