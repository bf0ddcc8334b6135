#include <OrvGL/GPUModel.h>

#include <OrvCore/InstanceDataCollection.h>
#include <OrvCore/InstanceDataPlan.h>
#include <OrvCore/InstanceDataRegistry.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/VertexArrayObject.h>

#include "support/GLFixture.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/Shaders.h"

#include <gmock/gmock.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::ElementsAre;

InstanceDataCollection *makeCollection(const QString &name)
{
    return new InstanceDataCollection(name, {InstanceData(name)});
}

TEST(GPUModel, StartsEmpty)
{
    EXPECT_EQ(GPUModel().bundleCount(), 0);
}

TEST(GPUModel, GivesBackWhatWasAdded)
{
    GPUModel model;
    auto *first = new DrawBuffers(nullptr);
    auto *second = new DrawBuffers(nullptr);
    auto *materials = makeCollection(QStringLiteral("materials"));
    auto *instances = makeCollection(QStringLiteral("instances"));
    EXPECT_EQ(model.add(first, 1, materials, nullptr, 0xffffffffffffffffull), 0);
    EXPECT_EQ(model.add(second, 2, nullptr, instances, 7), 1);
    EXPECT_EQ(model.bundleCount(), 2);
    EXPECT_EQ(model.bundle(0), first);
    EXPECT_EQ(model.bundle(1), second);
    EXPECT_EQ(model.instanceCount(0), 1);
    EXPECT_EQ(model.instanceCount(1), 2);
    EXPECT_EQ(model.key(0), 0xffffffffffffffffull);
    EXPECT_EQ(model.key(1), 7u);
    EXPECT_EQ(model.materials(0), materials);
    EXPECT_EQ(model.materials(1), nullptr);
    EXPECT_EQ(model.instances(0), nullptr);
    EXPECT_EQ(model.instances(1), instances);
}

TEST(GPUModel, NamesCommandsBySlot)
{
    GPUModel model;
    model.add(new DrawBuffers(nullptr), 1, nullptr, nullptr, 0);
    model.add(new DrawBuffers(nullptr), 1, nullptr, nullptr, 1);
    model.addMaterialName(0, 0, QStringLiteral("steel"));
    model.addMaterialName(0, 2, QStringLiteral("glass"));
    model.addMaterialName(1, 0, QStringLiteral("wood"));
    model.addObjectName(0, 2, QStringLiteral("window"));
    model.addMaterialName(0, 0, QStringLiteral("iron"));
    EXPECT_EQ(model.materialName(0, 0), QStringLiteral("iron"));
    EXPECT_TRUE(model.materialName(0, 1).isNull());
    EXPECT_EQ(model.materialName(0, 2), QStringLiteral("glass"));
    EXPECT_EQ(model.materialName(1, 0), QStringLiteral("wood"));
    EXPECT_TRUE(model.objectName(0, 0).isNull());
    EXPECT_EQ(model.objectName(0, 2), QStringLiteral("window"));
}

TEST(GPUModel, AnswersOutOfRangeWithNothing)
{
    GPUModel model;
    model.add(new DrawBuffers(nullptr), 1, makeCollection(QStringLiteral("m")),
              makeCollection(QStringLiteral("i")), 5);
    for (const int index : {-1, 1, 0x7fffffff}) {
        EXPECT_EQ(model.bundle(index), nullptr);
        EXPECT_EQ(model.instanceCount(index), 0);
        EXPECT_EQ(model.key(index), 0u);
        EXPECT_EQ(model.materials(index), nullptr);
        EXPECT_EQ(model.instances(index), nullptr);
        EXPECT_TRUE(model.materialName(index, 0).isNull());
        EXPECT_TRUE(model.objectName(index, 0).isNull());
    }
    EXPECT_TRUE(model.materialName(0, -1).isNull());
    EXPECT_TRUE(model.objectName(0, 0x7fffffff).isNull());
}

TEST(GPUModel, NamesNothingOutOfRange)
{
    GPUModel model;
    model.add(new DrawBuffers(nullptr), 1, nullptr, nullptr, 0);
    const MessageCapture log;
    model.addMaterialName(1, 0, QStringLiteral("steel"));
    model.addObjectName(0, -1, QStringLiteral("window"));
    EXPECT_TRUE(model.objectName(0, -1).isNull());
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("GPUModel: there is no slot 0 in bundle 1 to name",
                            "GPUModel: there is no slot -1 in bundle 0 to name"));
}

TEST(GPUModel, OwnsWhatWasAdded)
{
    QPointer<DrawBuffers> bundle;
    {
        QObject parent;
        {
            GPUModel model;
            bundle = new DrawBuffers(&parent);
            model.add(bundle, 1, makeCollection(QStringLiteral("m")), nullptr, 0);
            EXPECT_EQ(bundle->parent(), nullptr) << "two owners";
        }
        EXPECT_FALSE(bundle);
    }
}

TEST(GPUModel, AddsNoNullBundleAndKeepsNothingOfIt)
{
    GPUModel model;
    const MessageCapture log;
    // That the collections are deleted is the leak checker's to see.
    EXPECT_EQ(model.add(nullptr, 1, makeCollection(QStringLiteral("m")),
                        makeCollection(QStringLiteral("i")), 0),
              -1);
    EXPECT_EQ(model.bundleCount(), 0);
    EXPECT_THAT(log.texts(QtWarningMsg), ElementsAre("GPUModel::add: there is no bundle"));
}

/// Shows each command in the colour of its material, read from the packed records.
const char *const colourPerMaterial = R"(
#version 430 core
#extension GL_ARB_shader_draw_parameters : require
struct Material { float Ns; vec3 Kd; };
layout(std430, binding = 0) readonly buffer Materials { Material materials[]; };
in vec2 va_Vertex;
flat out vec4 colour;
void main() {
    colour = vec4(materials[gl_DrawIDARB].Kd, 1);
    gl_Position = vec4(va_Vertex, 0, 1);
}
)";

InstanceData material(std::initializer_list<float> colour)
{
    InstanceData record(QStringLiteral("GPUModelTest material"));
    record.set(QStringLiteral("Kd"), colour.begin(), colour.size() * sizeof(float));
    return record;
}

class GPUModelUploadTest : public GLFixture
{
protected:
    /// A buffer that nobody could fill: 2^61 bytes are more than any machine has.
    QSharedPointer<BufferObject> makeFailed(GLenum target) const
    {
        const MessageCapture quiet;
        auto buffer = _device->createBufferObject();
        buffer->setTarget(target);
        buffer->uploadArbitraryData(nullptr, 2, GL_STATIC_DRAW, 1ul << 60);
        EXPECT_TRUE(buffer->uploadFailed());
        return buffer;
    }

    /// Adds a bundle of these, and collections, to the model.
    static int add(GPUModel &model, const QSharedPointer<BufferObject> &indices,
                   const QSharedPointer<BufferObject> &vertices)
    {
        auto *bundle = new DrawBuffers(nullptr);
        bundle->setVAO(OpenGLDeviceContext::current()->createVertexArrayObject());
        bundle->VAO()->registerBO(QStringLiteral("va_Vertex"), vertices, 3, GL_FLOAT);
        bundle->setIndexedDraw(indices, 1, GL_UNSIGNED_INT);
        return model.add(bundle, 1, makeCollection(QStringLiteral("materials")),
                         makeCollection(QStringLiteral("instances")), 0);
    }
};

TEST_F(GPUModelUploadTest, AddsNoBundleThatLacksABuffer)
{
    const auto indices = makeBuffer<unsigned>(GL_ELEMENT_ARRAY_BUFFER, {0});
    const auto vertices = makeBuffer<float>(GL_ARRAY_BUFFER, {1, 2, 3});
    const auto noIndices = makeFailed(GL_ELEMENT_ARRAY_BUFFER);
    const auto noVertices = makeFailed(GL_ARRAY_BUFFER);
    GPUModel model;
    const MessageCapture log;
    EXPECT_EQ(add(model, noIndices, vertices), -1);
    EXPECT_EQ(add(model, indices, noVertices), -1);
    EXPECT_EQ(model.bundleCount(), 0);
    const std::string refusal = "GPUModel::add: the bundle is not added, since a buffer of it "
                                "could not be uploaded";
    EXPECT_THAT(log.texts(QtWarningMsg), ElementsAre(refusal, refusal));
    EXPECT_EQ(add(model, indices, vertices), 0);
    EXPECT_EQ(add(model, {}, {}), 1) << "what is not there has not failed";
}

class GPUModelDrawTest : public GLFixture
{
protected:
    void SetUp() override
    {
        GLFixture::SetUp();
        if (!_device->hasDrawParameters())
            GTEST_SKIP() << "the driver has no gl_DrawIDARB";
        _program = linkProgram(colourPerMaterial, showColour);
        _canvas = std::make_unique<Canvas>(2, 2);
    }

    void TearDown() override
    {
        _canvas.reset();
        GLFixture::TearDown();
    }

    // The lower or upper half of the picture as two squares, one per command:
    //
    //     3   4   5
    //     | 0 | 1 |
    //     0   1   2
    DrawBuffers *makeHalf(float bottom)
    {
        const float top = bottom + 1;
        const auto vao = _device->createVertexArrayObject();
        vao->registerBO(QStringLiteral("va_Vertex"),
                        makeBuffer<float>(GL_ARRAY_BUFFER, {-1, bottom, 0, bottom, 1, bottom, //
                                                            -1, top, 0, top, 1, top}),
                        2, GL_FLOAT);
        auto *draw = new DrawBuffers(nullptr);
        draw->setVAO(vao);
        draw->setIndexedDraw(makeBuffer<unsigned short>(GL_ELEMENT_ARRAY_BUFFER,
                                                        {0, 1, 4, 0, 4, 3, 1, 2, 5, 1, 5, 4}),
                             12, GL_UNSIGNED_SHORT);
        const DrawElementsIndirectCommand commands[] = {{6, 1, 0, 0, 0}, {6, 1, 6, 0, 0}};
        draw->setDrawElementsIndirectCommands(commands, 2);
        return draw;
    }

    static void registerMaterialPlan()
    {
        static const bool once = [] {
            auto *plan = new InstanceDataPlan(QStringLiteral("GPUModelTest material"));
            plan->addMember(InstanceDataPlan::Float, QStringLiteral("Ns"));
            plan->addMember(InstanceDataPlan::Vec3, QStringLiteral("Kd"));
            InstanceDataRegistry::Instance().registerPlan(plan);
            return true;
        }();
        Q_UNUSED(once)
    }

    GLuint _program = 0;
    std::unique_ptr<Canvas> _canvas;
};

TEST_F(GPUModelDrawTest, DrawsEveryCommandOfEveryBundleWithItsMaterial)
{
    registerMaterialPlan();
    GPUModel model;
    model.add(makeHalf(-1), 1,
              new InstanceDataCollection(QStringLiteral("GPUModelTest material"),
                                         {material({1, 0, 0}), material({0, 1, 0})}),
              nullptr, 0);
    model.add(makeHalf(0), 1, nullptr, nullptr, 1);

    const QByteArray packed = model.materials(0)->pack();
    const auto buffer = _device->createBufferObject();
    buffer->uploadArbitraryData(packed.constData(), packed.size(), GL_STATIC_DRAW, 1);
    glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 0, buffer->id());

    EXPECT_TRUE(model.draw(_program));
    EXPECT_EQ(_canvas->pixel(0, 0), Red);
    EXPECT_EQ(_canvas->pixel(1, 0), Green);
    EXPECT_EQ(_canvas->pixel(0, 1), Red);
    EXPECT_EQ(_canvas->pixel(1, 1), Green);
}

TEST_F(GPUModelDrawTest, DrawsTheOtherBundlesWhereOneCannotBeDrawn)
{
    const auto white4 = makeBuffer<float>(GL_SHADER_STORAGE_BUFFER,
                                          {0, 0, 0, 0, 1, 1, 1, 0, 0, 0, 0, 0, 1, 1, 1, 0});
    glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 0, white4->id());
    GPUModel model;
    auto *broken = makeHalf(-1);
    broken->setVAO({});
    model.add(broken, 1, nullptr, nullptr, 0);
    model.add(makeHalf(0), 1, nullptr, nullptr, 1);
    const MessageCapture log;
    EXPECT_FALSE(model.draw(_program));
    EXPECT_EQ(_canvas->pixel(0, 0), Black);
    EXPECT_EQ(_canvas->pixel(0, 1), White);
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("DrawBuffers: nothing is drawn: there are no vertex attributes"));
}

TEST_F(GPUModelDrawTest, AnEmptyModelDrawsNothing)
{
    EXPECT_TRUE(GPUModel().draw(_program));
    EXPECT_EQ(_canvas->pixel(0, 0), Black);
}

TEST_F(GPUModelDrawTest, AModelMayOutliveItsContext)
{
    GPUModel model;
    model.add(makeHalf(-1), 1, nullptr, nullptr, 0);
    EXPECT_TRUE(model.draw(_program));
    _canvas.reset();
    _context.reset();
    const MessageCapture log;
    EXPECT_FALSE(model.draw(_program));
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("DrawBuffers: nothing is drawn: no OpenGL context is current"));
}

} // namespace
