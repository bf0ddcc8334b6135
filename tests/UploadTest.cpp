#include "support/GLTest.h"
#include "support/GPUReadBack.h"
#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"

#include <OrvGL/OpenGLFunctions.h>

#include <OrvModel/ModelBuilder.h>

#include <OrvCore/InstanceData.h>
#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/GPUModel.h>

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace OrvTest {
namespace {

using Halvard::Orv::DrawBuffers;
using Halvard::Orv::GPUModel;
using Halvard::Orv::InstanceData;
using Halvard::Orv::ModelBuilder;
using Inspector = Halvard::Orv::ModelBuilderInspector;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What the tests upload, and what comes of it.
///
///     d--c      One face of four corners, cut from b to d:
///     |\ |      triangles a b d and b c d, vertices 0 1 3 and 1 2 3.
///     | \|
///     a--b
class UploadTest : public GLTest
{
protected:
    const std::vector<float> squarePositions = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};

    void addSquare(ModelBuilder &builder) const
    {
        addFaces(builder, {4});
        addAttribute(builder, vertexName(), 3, squarePositions, {0, 1, 2, 3});
    }

    void addSquareWithGroup(ModelBuilder &builder) const
    {
        addSquare(builder);
        addGroup(builder, a, {0});
    }

    /// Two triangles in two groups: face 0 in `a`, face 1 in `b`.
    void addTwoGroups(ModelBuilder &builder, quint64 flagsOfA, quint64 flagsOfB) const
    {
        addFaces(builder, {3, 3});
        addAttribute(builder, vertexName(), 3, squarePositions, {0, 1, 2, 0, 2, 3});
        addGroup(builder, a, {0}, flagsOfA);
        addGroup(builder, b, {1}, flagsOfB);
    }

    void upload(ModelBuilder &builder, const QString &materialIdMember = QString())
    {
        builder.upload(&model, instanceRecord(), vertexName(), materialIdMember, GL_STATIC_DRAW,
                       GL_TRIANGLES);
    }

    static InstanceData instanceRecord()
    {
        InstanceData record(QStringLiteral("InstanceInfo"));
        const float scale = 2;
        record.set(QStringLiteral("scale"), &scale, sizeof scale);
        return record;
    }

    /// A bundle of the model, which must exist.
    DrawBuffers &bundle(int index = 0) const
    {
        DrawBuffers *found = model.bundle(index);
        if (!found)
            throw std::out_of_range("no such bundle");
        return *found;
    }

    MessageCapture messages;
    GPUModel model;
    const QString a = QStringLiteral("a");
    const QString b = QStringLiteral("b");
};

// What is uploaded

TEST_F(UploadTest, aSquare)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    upload(builder);

    ASSERT_EQ(model.bundleCount(), 1);
    EXPECT_EQ(model.key(0), 0u);
    EXPECT_EQ(model.instanceCount(0), 1);
    EXPECT_EQ(bundle().vertexCount(), 4u);
    EXPECT_EQ(bundle().primitiveType(), unsigned(GL_TRIANGLES));

    EXPECT_EQ(bundle().indexCount(), 6);
    EXPECT_EQ(bundle().indexType(), unsigned(GL_UNSIGNED_SHORT));
    EXPECT_EQ(bundle().indexBuffer()->target(), unsigned(GL_ELEMENT_ARRAY_BUFFER));
    EXPECT_THAT(downloaded<std::uint16_t>(bundle().indexBuffer()), ElementsAre(0, 1, 3, 1, 2, 3));

    ASSERT_EQ(bundle().VAO()->attributes().size(), 1);
    const auto positions = vertexAttribute(bundle(), vertexName());
    EXPECT_EQ(positions.components, 3);
    EXPECT_EQ(positions.type, unsigned(GL_FLOAT));
    EXPECT_EQ(positions.buffer->target(), unsigned(GL_ARRAY_BUFFER));
    EXPECT_THAT(downloaded<float>(positions.buffer), areFloats(squarePositions));

    ASSERT_EQ(bundle().commands().size(), 1);
    const auto command = bundle().commands().at(0);
    EXPECT_EQ(command.count, 6u);
    EXPECT_EQ(command.instanceCount, 1u);
    EXPECT_EQ(command.firstIndex, 0u);
    EXPECT_EQ(command.baseVertex, 0);
    EXPECT_EQ(command.baseInstance, 0u);

    EXPECT_EQ(model.materialName(0, 0), a);
    EXPECT_TRUE(model.objectName(0, 0).isNull());
    EXPECT_THAT(messages.texts(QtWarningMsg), IsEmpty());
    EXPECT_THAT(messages.texts(QtCriticalMsg), IsEmpty());
}

TEST_F(UploadTest, usageAndPrimitiveTypeAreTheCallers)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    builder.upload(&model, instanceRecord(), vertexName(), QString(), GL_DYNAMIC_DRAW, GL_LINES);

    EXPECT_EQ(bundle().primitiveType(), unsigned(GL_LINES));
    for (const unsigned id :
         {bundle().indexBuffer()->id(), vertexAttribute(bundle(), vertexName()).buffer->id()}) {
        GLint usage = 0;
        glBindBuffer(GL_ARRAY_BUFFER, id);
        glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_USAGE, &usage);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        EXPECT_EQ(usage, GL_DYNAMIC_DRAW);
    }
}

TEST_F(UploadTest, leavesNoBufferBound)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    upload(builder);
    GLint bound = -1;
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &bound);
    EXPECT_EQ(bound, 0);
}

TEST_F(UploadTest, everyAttributeHasABufferOfItsOwn)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    addAttribute(builder, texCoordName(), 2, {0, 0, 1, 0, 1, 1, 0, 1}, {0, 1, 2, 3});
    const QString colour = QStringLiteral("colour");
    builder.createVertexAttribute(colour, 4, GL_UNSIGNED_BYTE, 0, 0);
    const unsigned char red[] = {255, 0, 0, 128};
    const unsigned zeros[] = {0, 0, 0, 0};
    builder.addValuesToVertexAttribute(colour, 4, red, GL_UNSIGNED_BYTE);
    builder.addIndicesToVertexAttribute(colour, 4, zeros);

    upload(builder);

    EXPECT_EQ(bundle().VAO()->attributes().size(), 3);
    EXPECT_THAT(downloaded<float>(vertexAttribute(bundle(), vertexName()).buffer),
                areFloats(squarePositions));
    const auto texCoords = vertexAttribute(bundle(), texCoordName());
    EXPECT_EQ(texCoords.components, 2);
    EXPECT_THAT(downloaded<float>(texCoords.buffer), areFloats({0, 0, 1, 0, 1, 1, 0, 1}));
    const auto colours = vertexAttribute(bundle(), colour);
    EXPECT_EQ(colours.components, 4);
    EXPECT_EQ(colours.type, unsigned(GL_UNSIGNED_BYTE));
    EXPECT_THAT(downloaded<unsigned char>(colours.buffer),
                ElementsAre(255, 0, 0, 128, 255, 0, 0, 128, 255, 0, 0, 128, 255, 0, 0, 128));
}

TEST_F(UploadTest, equalVerticesAreUploadedOnce)
{
    ModelBuilder builder({}, 0);
    // The square as two triangles: six corners, four vertices.
    addTwoGroups(builder, 0, 0);
    upload(builder);
    EXPECT_EQ(bundle().vertexCount(), 4u);
    EXPECT_THAT(downloaded<float>(vertexAttribute(bundle(), vertexName()).buffer),
                areFloats(squarePositions));
}

TEST_F(UploadTest, streamsBuiltBeforeAreUsed)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    builder.buildGPUFriendlyStreams(true);
    auto &attribute = Inspector::vertexAttributes(builder)[vertexName()];
    static_cast<float *>(attribute.gpuValues->data(0))[2] = 5;
    messages.clear();
    upload(builder);
    EXPECT_EQ(downloaded<float>(vertexAttribute(bundle(), vertexName()).buffer)[2], 5.0f);
    EXPECT_THAT(messages.texts(QtDebugMsg), IsEmpty()) << "nothing is welded again";
}

TEST_F(UploadTest, aPositionOfFourFloatsCountsAsOneVertex)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 4, {0, 0, 0, 1, 1, 0, 0, 1, 0, 1, 0, 1}, {0, 1, 2});
    addGroup(builder, a, {0});
    upload(builder);
    EXPECT_EQ(bundle().vertexCount(), 3u);
    EXPECT_EQ(vertexAttribute(bundle(), vertexName()).components, 4);
}

// Index width

TEST_F(UploadTest, indicesAreSixteenBitsWideUpTo65534Vertices)
{
    struct Row
    {
        const char *name;
        unsigned vertices;
        unsigned type;
    };
    const Row rows[] = {
        {"65533", 65533, GL_UNSIGNED_SHORT},
        {"the last with 16 bits", 65534, GL_UNSIGNED_SHORT},
        {"the first with 32 bits", 65535, GL_UNSIGNED_INT},
        {"one that needs them", 65537, GL_UNSIGNED_INT},
    };
    for (const Row &row : rows) {
        // Triangles 0 1 2, 3 4 5, ..., each value once, and vertex 0 again until the
        // last triangle is full. It is welded, so the corners may well be more.
        std::vector<float> values(3 * row.vertices, 0.0f);
        std::vector<unsigned> corners((row.vertices + 2) / 3 * 3, 0);
        for (unsigned i = 0; i < row.vertices; ++i) {
            values[3 * i] = static_cast<float>(i); // exact below 2^24
            corners[i] = i;
        }
        ModelBuilder builder({}, 0);
        std::vector<unsigned> faces(corners.size() / 3);
        std::iota(faces.begin(), faces.end(), 0u);
        addFaces(builder, std::vector<unsigned>(faces.size(), 3));
        addAttribute(builder, vertexName(), 3, values, corners);
        addGroup(builder, a, faces);
        GPUModel uploaded;
        builder.upload(&uploaded, instanceRecord(), vertexName(), QString(), GL_STATIC_DRAW,
                       GL_TRIANGLES);

        ASSERT_EQ(uploaded.bundleCount(), 1) << row.name;
        const DrawBuffers &only = *uploaded.bundle(0);
        EXPECT_EQ(only.vertexCount(), row.vertices) << row.name;
        ASSERT_EQ(only.indexType(), row.type) << row.name;
        EXPECT_EQ(only.indexCount(), static_cast<int>(corners.size())) << row.name;
        EXPECT_TRUE(downloaded<float>(vertexAttribute(only, vertexName()).buffer) == values)
            << row.name;
        if (row.type == GL_UNSIGNED_SHORT) {
            const auto indices = downloaded<std::uint16_t>(only.indexBuffer());
            EXPECT_TRUE(std::equal(indices.begin(), indices.end(), corners.begin(), corners.end()))
                << row.name;
        } else {
            EXPECT_TRUE(downloaded<std::uint32_t>(only.indexBuffer()) == corners) << row.name;
        }
    }
}

// When nothing is uploaded

TEST_F(UploadTest, nothingHappensWithoutWhatIsNeeded)
{
    struct Row
    {
        const char *name;
        void (*change)(ModelBuilder &);
        QString position;
    };
    const Row rows[] = {
        {"no group", [](ModelBuilder &builder) { Inspector::materialGroups(builder).clear(); },
         vertexName()},
        {"no face", [](ModelBuilder &builder) { Inspector::verticesPerFace(builder)->resize(0); },
         vertexName()},
        {"an attribute without values",
         [](ModelBuilder &builder) { addAttribute(builder, normalName(), 3, {}, {0}); },
         vertexName()},
        {"an attribute without indices",
         [](ModelBuilder &builder) {
             addAttribute(builder, normalName(), 3, {0, 0, 1}, {});
         },
         vertexName()},
        {"an unknown position attribute", [](ModelBuilder &) {}, QStringLiteral("va_vertex")},
        {"no position attribute", [](ModelBuilder &) {}, QString()},
        {"positions in the plane",
         [](ModelBuilder &builder) {
             addAttribute(builder, vertexName(), 2, {0, 0, 1, 0, 1, 1, 0, 1}, {0, 1, 2, 3});
         },
         vertexName()},
        {"positions that are not floats",
         [](ModelBuilder &builder) {
             builder.createVertexAttribute(vertexName(), 3, GL_DOUBLE, 12, 4);
         },
         vertexName()},
    };
    for (const Row &row : rows) {
        const auto allocator = QSharedPointer<RecordingAllocator>::create();
        ModelBuilder builder(allocator, 0);
        addSquareWithGroup(builder);
        row.change(builder);
        allocator->log().clear();
        builder.upload(&model, instanceRecord(), row.position, QString(), GL_STATIC_DRAW,
                       GL_TRIANGLES);
        EXPECT_EQ(model.bundleCount(), 0) << row.name;
        EXPECT_THAT(allocator->log().changes(), IsEmpty()) << row.name;
        EXPECT_TRUE(Inspector::drawCommands(builder).isEmpty()) << row.name;
    }
    EXPECT_THAT(messages.messages(), IsEmpty());
}

TEST_F(UploadTest, nothingHappensWithoutACurrentContext)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0);
    addSquareWithGroup(builder);
    allocator->log().clear();
    messages.clear();
    {
        const NoCurrentContext noContext;
        upload(builder);
    }
    EXPECT_EQ(model.bundleCount(), 0);
    EXPECT_THAT(allocator->log().changes(), IsEmpty());
    EXPECT_FALSE(Inspector::vertexAttribute(builder, vertexName()).gpuValues);
    EXPECT_THAT(messages.messages(), IsEmpty());

    upload(builder);
    EXPECT_EQ(model.bundleCount(), 1) << "the builder is none the worse for it";
}

TEST_F(UploadTest, groupsWithoutFacesGiveNoBundle)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0);
    addSquare(builder);
    addGroup(builder, a, {});
    upload(builder);
    EXPECT_EQ(model.bundleCount(), 0);
    EXPECT_TRUE(Inspector::drawCommands(builder).isEmpty());
    EXPECT_TRUE(Inspector::vertexAttribute(builder, vertexName()).gpuValues)
        << "the streams are built all the same";
    EXPECT_THAT(allocator->log().lines(), ::testing::Contains("alloc USHORT 0 -> s8"))
        << "and the element buffer made, of nothing";
}

TEST_F(UploadTest, groupsWithoutFacesAreLeftOutOfTheBundle)
{
    ModelBuilder builder({}, 0);
    addSquare(builder);
    addGroup(builder, a, {});
    addGroup(builder, b, {0});
    upload(builder);
    ASSERT_EQ(model.bundleCount(), 1);
    EXPECT_EQ(bundle().commands().size(), 1);
    EXPECT_EQ(model.materialName(0, 0), b);
    EXPECT_EQ(model.materials(0)->records().size(), 1);
}

// Normals

TEST_F(UploadTest, generatedNormalsAreAnAttributeLikeTheOthers)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    builder.generateNormals(normalName());
    upload(builder);

    EXPECT_EQ(bundle().VAO()->attributes().size(), 2);
    const auto normals = vertexAttribute(bundle(), normalName());
    EXPECT_EQ(normals.components, 3);
    EXPECT_EQ(normals.type, unsigned(GL_FLOAT));
    // The triangle 0 1 3: (P3 - P0) x (P1 - P0) = (0, 1, 0) x (1, 0, 0) = (0, 0, -1).
    EXPECT_THAT(downloaded<float>(normals.buffer),
                ElementsAre(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1));

    const auto attribute = Inspector::vertexAttribute(builder, normalName());
    EXPECT_FALSE(attribute.values);
    EXPECT_FALSE(attribute.indices);
    EXPECT_EQ(attribute.gpuIndices, Inspector::vertexAttribute(builder, vertexName()).gpuIndices);
    EXPECT_TRUE(builder.isValid());
}

// A triangle in the plane and one standing on its edge a-b, folded by 90 degrees:
//
//       z d
//       |/_ c      a (0,0,0), b (1,0,0), c (0,1,0), d (0,0,1)
//       a--b       faces a b c: normal (0,0,-1); a b d: (0,0,1) x (1,0,0) = (0,1,0)
//
// a and b are shared: (0, 1, -1) / sqrt 2.
TEST_F(UploadTest, generatedNormalsAreSmoothAcrossWeldedVertices)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {3, 3});
    addAttribute(builder, vertexName(), 3, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1},
                 {0, 1, 2, 0, 1, 3});
    addGroup(builder, a, {0, 1});
    builder.generateNormals(normalName());
    upload(builder);
    // sqrt(1/2) as the nearest float; the sum is (0, 1, -1), of length sqrt 2.
    const float half = 0x1.6a09e6p-1f;
    EXPECT_THAT(downloaded<float>(vertexAttribute(bundle(), normalName()).buffer),
                ElementsAre(0, half, -half, 0, half, -half, 0, 0, -1, 0, 1, 0));
}

TEST_F(UploadTest, generatedNormalsOverwriteTheGPUSideOfAnExistingAttribute)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    addAttribute(builder, normalName(), 2, {5, 6}, {0, 0, 0, 0});
    builder.generateNormals(normalName());
    upload(builder);

    const auto normals = vertexAttribute(bundle(), normalName());
    EXPECT_EQ(normals.components, 3);
    EXPECT_THAT(downloaded<float>(normals.buffer),
                ElementsAre(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1));
    const auto attribute = Inspector::vertexAttribute(builder, normalName());
    EXPECT_THAT(floats(attribute.values), ElementsAre(5, 6)) << "what was loaded stays";
    EXPECT_THAT(uints(attribute.indices), ElementsAre(0, 0, 0, 0));
}

TEST_F(UploadTest, normalsGoUnderAnyNameThatIsNotNull)
{
    const QString empty = QLatin1String("");
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    builder.generateNormals(empty);
    upload(builder);
    EXPECT_EQ(bundle().VAO()->attributes().size(), 2);
    EXPECT_TRUE(vertexAttribute(bundle(), empty).buffer);
}

TEST_F(UploadTest, verticesOfNoTriangleHaveZeroNormals)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {3, 2});
    addAttribute(builder, vertexName(), 3, squarePositions, {0, 1, 2, 2, 3});
    addGroup(builder, a, {0, 1});
    builder.generateNormals(normalName());
    upload(builder);
    // 0 1 2: (P2 - P0) x (P1 - P0) points to -z; vertex 3 has only an edge.
    EXPECT_THAT(downloaded<float>(vertexAttribute(bundle(), normalName()).buffer),
                ElementsAre(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, 0));
}

// Batches

TEST_F(UploadTest, groupsOfOneKeyShareABundle)
{
    ModelBuilder builder({}, 0);
    addTwoGroups(builder, 1, 2);
    upload(builder);

    ASSERT_EQ(model.bundleCount(), 1);
    ASSERT_EQ(bundle().commands().size(), 2);
    EXPECT_EQ(bundle().commands().at(0).count, 3u);
    EXPECT_EQ(bundle().commands().at(0).firstIndex, 0u);
    EXPECT_EQ(bundle().commands().at(1).count, 3u);
    EXPECT_EQ(bundle().commands().at(1).firstIndex, 3u);

    // Which group comes first is up to the table; names and runs belong together.
    const auto indices = downloaded<std::uint16_t>(bundle().indexBuffer());
    ASSERT_EQ(indices.size(), 6u);
    for (int slot = 0; slot < 2; ++slot) {
        const auto run = indices.begin() + 3 * slot;
        const std::vector<std::uint16_t> triangle(run, run + 3);
        const std::vector<std::uint16_t> first = {0, 1, 2};
        const std::vector<std::uint16_t> second = {0, 2, 3};
        EXPECT_EQ(triangle, model.materialName(0, slot) == a ? first : second);
    }
    EXPECT_NE(model.materialName(0, 0), model.materialName(0, 1));
}

TEST_F(UploadTest, groupsOfTwoKeysHaveBundlesThatShareTheBuffers)
{
    ModelBuilder builder({}, 0xF0);
    addTwoGroups(builder, 0x13, 0x23);
    upload(builder);

    ASSERT_EQ(model.bundleCount(), 2);
    EXPECT_EQ(std::min(model.key(0), model.key(1)), 0x10u);
    EXPECT_EQ(std::max(model.key(0), model.key(1)), 0x20u);
    EXPECT_EQ(bundle(0).indexBuffer(), bundle(1).indexBuffer());
    EXPECT_EQ(vertexAttribute(bundle(0), vertexName()).buffer,
              vertexAttribute(bundle(1), vertexName()).buffer);
    EXPECT_NE(bundle(0).VAO(), bundle(1).VAO());
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(bundle(i).indexCount(), 6) << "the whole element buffer";
        EXPECT_EQ(bundle(i).commands().size(), 1);
        EXPECT_EQ(model.materialName(i, 0), model.key(i) == 0x10 ? a : b);
        EXPECT_EQ(model.materials(i)->records().size(), 1);
        EXPECT_EQ(model.instances(i)->records().size(), 1);
    }
    EXPECT_EQ(bundle(0).commands().at(0).firstIndex + bundle(1).commands().at(0).firstIndex, 3u)
        << "one run begins at 0, the other at 3";
}

TEST_F(UploadTest, theModelOutlivesTheBuilder)
{
    {
        ModelBuilder builder({}, 0);
        addSquareWithGroup(builder);
        upload(builder);
    }
    EXPECT_EQ(bundle().commands().at(0).count, 6u);
    EXPECT_THAT(downloaded<std::uint16_t>(bundle().indexBuffer()), ElementsAre(0, 1, 3, 1, 2, 3));
    EXPECT_THAT(downloaded<float>(vertexAttribute(bundle(), vertexName()).buffer),
                areFloats(squarePositions));
    EXPECT_EQ(model.materials(0)->records().size(), 1);
}

// Records and names

InstanceData materialRecord(const QString &plan, float ns)
{
    InstanceData record(plan);
    record.set(QStringLiteral("Ns"), &ns, sizeof ns);
    return record;
}

TEST_F(UploadTest, materialsStandInTheOrderOfTheCommands)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {3, 3});
    addAttribute(builder, vertexName(), 3, squarePositions, {0, 1, 2, 0, 2, 3});
    builder.createMaterialGroup(a, materialRecord(QStringLiteral("PlanA"), 1), -1, 0);
    builder.createMaterialGroup(b, materialRecord(QStringLiteral("PlanB"), 2), -1, 0);
    const unsigned faces[] = {0, 1};
    builder.addFacesToMaterialGroup(a, 1, &faces[0], QStringLiteral("object of a"));
    builder.addFacesToMaterialGroup(b, 1, &faces[1], QString());

    upload(builder);

    ASSERT_EQ(model.bundleCount(), 1);
    ASSERT_TRUE(model.materials(0));
    ASSERT_TRUE(model.instances(0));
    ASSERT_EQ(model.materials(0)->records().size(), 2);
    ASSERT_EQ(model.instances(0)->records().size(), 2);
    const QByteArray one = QByteArray::fromHex("0000803f");
    const QByteArray two = QByteArray::fromHex("00000040");
    for (int slot = 0; slot < 2; ++slot) {
        const bool isA = model.materialName(0, slot) == a;
        EXPECT_EQ(model.materialName(0, slot), isA ? a : b);
        EXPECT_EQ(model.objectName(0, slot), isA ? QStringLiteral("object of a") : QString());
        EXPECT_EQ(model.objectName(0, slot).isNull(), !isA);
        const InstanceData &material = model.materials(0)->records().at(slot);
        EXPECT_EQ(material.name(), isA ? QStringLiteral("PlanA") : QStringLiteral("PlanB"));
        EXPECT_EQ(material.value(QStringLiteral("Ns")), isA ? one : two);
        const InstanceData &instance = model.instances(0)->records().at(slot);
        EXPECT_EQ(instance.name(), QStringLiteral("InstanceInfo"));
        EXPECT_EQ(instance.members(), QStringList{QStringLiteral("scale")});
        EXPECT_EQ(instance.value(QStringLiteral("scale")), two);
    }
    EXPECT_EQ(model.materials(0)->name(), model.materials(0)->records().at(0).name())
        << "named after the first material";
    EXPECT_EQ(model.instances(0)->name(), QStringLiteral("InstanceInfo"));
}

TEST_F(UploadTest, aMaterialIdMemberTakesThePlaceOfTheMaterials)
{
    for (const QString &member : {QStringLiteral("materialId"), QString(QLatin1String(""))}) {
        ModelBuilder builder({}, 0);
        addFaces(builder, {3, 3});
        addAttribute(builder, vertexName(), 3, squarePositions, {0, 1, 2, 0, 2, 3});
        builder.createMaterialGroup(a, InstanceData(), 7, 0);
        builder.createMaterialGroup(b, InstanceData(), 0x01020304, 0);
        const unsigned faces[] = {0, 1};
        builder.addFacesToMaterialGroup(a, 1, &faces[0], QString());
        builder.addFacesToMaterialGroup(b, 1, &faces[1], QString());
        GPUModel uploaded;
        const InstanceData record = instanceRecord();
        builder.upload(&uploaded, record, vertexName(), member, GL_STATIC_DRAW, GL_TRIANGLES);

        ASSERT_EQ(uploaded.bundleCount(), 1);
        EXPECT_EQ(uploaded.materials(0), nullptr);
        ASSERT_TRUE(uploaded.instances(0));
        ASSERT_EQ(uploaded.instances(0)->records().size(), 2);
        for (int slot = 0; slot < 2; ++slot) {
            const bool isA = uploaded.materialName(0, slot) == a;
            const InstanceData &instance = uploaded.instances(0)->records().at(slot);
            EXPECT_EQ(instance.value(member), QByteArray::fromHex(isA ? "07000000" : "04030201"));
            EXPECT_EQ(instance.value(QStringLiteral("scale")), QByteArray::fromHex("00000040"));
        }
        EXPECT_EQ(record.members(), QStringList{QStringLiteral("scale")})
            << "the caller's record is copied, not changed";
    }
}

// More than once

TEST_F(UploadTest, aSecondUploadAddsTheSameInNewBuffers)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0);
    addSquareWithGroup(builder);
    builder.generateNormals(normalName());
    upload(builder);
    allocator->log().clear();
    messages.clear();

    upload(builder);

    // Only the narrowed indices are made anew, and thrown away.
    ASSERT_EQ(allocator->log().changes().size(), 2u);
    EXPECT_THAT(allocator->log().changes().front(), ::testing::StartsWith("alloc USHORT 6 -> "));
    EXPECT_THAT(allocator->log().changes().back(), ::testing::EndsWith(".delete"));
    EXPECT_THAT(messages.messages(), IsEmpty()) << "nothing is welded again";
    ASSERT_EQ(model.bundleCount(), 2);
    EXPECT_EQ(bundle(0).commands(), bundle(1).commands());
    EXPECT_NE(bundle(0).indexBuffer(), bundle(1).indexBuffer());
    EXPECT_EQ(downloaded<std::uint16_t>(bundle(0).indexBuffer()),
              downloaded<std::uint16_t>(bundle(1).indexBuffer()));
    for (const QString &name : {vertexName(), normalName()}) {
        const auto first = vertexAttribute(bundle(0), name).buffer;
        const auto second = vertexAttribute(bundle(1), name).buffer;
        EXPECT_NE(first, second);
        EXPECT_EQ(downloaded<float>(first), downloaded<float>(second));
    }
}

TEST_F(UploadTest, aClearedBuilderUploadsWhatItIsFilledWithNext)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    upload(builder);
    builder.clear();
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 3, {9, 0, 0, 0, 9, 0, 0, 0, 9}, {0, 1, 2});
    addGroup(builder, b, {0});
    upload(builder);
    ASSERT_EQ(model.bundleCount(), 2);
    ASSERT_EQ(bundle(1).commands().size(), 1);
    EXPECT_EQ(bundle(1).commands().at(0).count, 3u);
    EXPECT_EQ(model.materialName(1, 0), b);
    EXPECT_THAT(downloaded<float>(vertexAttribute(bundle(1), vertexName()).buffer),
                areFloats({9, 0, 0, 0, 9, 0, 0, 0, 9}));
}

// The combined indices are the sign of a prepared builder. When no face gives a
// triangle they stay empty, and the second upload prepares once more.
TEST_F(UploadTest, aModelWithoutTrianglesIsPreparedAgain)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {2});
    addAttribute(builder, vertexName(), 3, squarePositions, {0, 1});
    addGroup(builder, a, {0});

    upload(builder);
    ASSERT_EQ(model.bundleCount(), 1);
    ASSERT_EQ(bundle(0).commands().size(), 1);
    EXPECT_EQ(bundle(0).commands().at(0).count, 0u);
    EXPECT_EQ(bundle(0).indexCount(), 0);
    EXPECT_EQ(bundle(0).vertexCount(), 2u);
    EXPECT_EQ(model.materialName(0, 0), a);

    upload(builder);
    ASSERT_EQ(model.bundleCount(), 2);
    EXPECT_EQ(bundle(0).commands().size(), 1) << "the first bundle has a copy";
    EXPECT_EQ(bundle(1).commands().size(), 2);
    EXPECT_EQ(model.materialName(1, 1), a);
}

// Storage of the application's own

TEST_F(UploadTest, makesTheDefinedChangesInTheDefinedOrder)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0); // s0 corner counts, s1 combined indices
    addSquareWithGroup(builder);        // s2 positions, s3 their indices, s4 faces
    builder.generateNormals(normalName());
    allocator->log().clear();

    upload(builder);

    EXPECT_THAT(allocator->log().changes(),
                ElementsAre("alloc UINT 4 -> s5",   // one index per corner
                            "alloc FLOAT 12 -> s6", // one value per corner
                            "s6.setData 0 3", "s6.setData 3 3", "s6.setData 6 3",
                            "s6.setData 9 3",                    //
                            "alloc FLOAT 12 -> s7", "s6.delete", // welded
                            "alloc UINT 0 -> s8", "s1.delete",   // triangles
                            "s8.append 6", "s8.resize 6", "s8.setData 0 6",
                            "alloc FLOAT 12 -> s9",                  // normals
                            "alloc USHORT 6 -> s10", "s10.delete")); // narrowed indices
    EXPECT_THAT(allocator->log().operations(),
                ElementsAre("alloc", "append", "data", "delete", "isEmpty", "resize", "setData",
                            "size", "type"));
}

TEST_F(UploadTest, withoutMemoryTheModelStaysAsItWasAndALaterUploadWorks)
{
    // Six streams, as in the list above.
    for (unsigned long available = 0; available < 6; ++available) {
        const auto allocator = QSharedPointer<RecordingAllocator>::create();
        ModelBuilder builder(allocator, 0);
        addSquareWithGroup(builder);
        builder.generateNormals(normalName());
        allocator->failAfter(available);
        GPUModel uploaded;
        const auto tryUpload = [&] {
            builder.upload(&uploaded, instanceRecord(), vertexName(), QString(), GL_STATIC_DRAW,
                           GL_TRIANGLES);
        };
        tryUpload();
        EXPECT_EQ(uploaded.bundleCount(), 0) << available;

        allocator->failAfter(100);
        tryUpload();
        ASSERT_EQ(uploaded.bundleCount(), 1) << available;
        EXPECT_EQ(uploaded.bundle(0)->commands().size(), 1) << available;
        EXPECT_THAT(downloaded<std::uint16_t>(uploaded.bundle(0)->indexBuffer()),
                    ElementsAre(0, 1, 3, 1, 2, 3))
            << available;
        EXPECT_THAT(downloaded<float>(vertexAttribute(*uploaded.bundle(0), normalName()).buffer),
                    ElementsAre(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1))
            << available;
    }
    EXPECT_THAT(messages.texts(QtWarningMsg), IsEmpty());
}

} // namespace
} // namespace OrvTest
