#include "support/ModelBuilderInspector.h"
#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"
#include "support/UploadFixture.h"

#include <algorithm>
#include <numeric>

namespace OrvTest {
namespace {

using Halvard::Orv::BufferObject;
using Halvard::Orv::DrawBuffers;
using Halvard::Orv::GPUModel;
using Halvard::Orv::InstanceData;
using Halvard::Orv::ModelBuilder;
using Inspector = Halvard::Orv::ModelBuilderInspector;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class UploadTest : public UploadFixture
{};

// What is uploaded

TEST_F(UploadTest, ASquare)
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

GLint usageOf(const BufferObject &buffer)
{
    GLint usage = 0;
    glBindBuffer(GL_ARRAY_BUFFER, buffer.id());
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_USAGE, &usage);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    return usage;
}

TEST_F(UploadTest, UsageAndPrimitiveTypeAreTheCallers)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    builder.upload(&model, instanceRecord(), vertexName(), QString(), GL_DYNAMIC_DRAW, GL_LINES);

    EXPECT_EQ(bundle().primitiveType(), unsigned(GL_LINES));
    EXPECT_EQ(usageOf(*bundle().indexBuffer()), GL_DYNAMIC_DRAW);
    EXPECT_EQ(usageOf(*vertexAttribute(bundle(), vertexName()).buffer), GL_DYNAMIC_DRAW);
}

TEST_F(UploadTest, LeavesNoBufferBound)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    upload(builder);
    for (const GLenum binding : {GL_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER_BINDING}) {
        GLint bound = -1;
        glGetIntegerv(binding, &bound);
        EXPECT_EQ(bound, 0) << binding;
    }
}

TEST_F(UploadTest, EveryAttributeHasABufferOfItsOwn)
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

// Face        0        1      2  3
// corners  0 1 2 3   4 5 6   -  6 5 0     each vertex is first seen in its own order
TEST_F(UploadTest, AFaceBeginsWhereTheCornersBeforeItEnd)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {4, 3, 0, 3});
    std::vector<float> positions = squarePositions;
    positions.insert(positions.end(), {5, 0, 0, 6, 0, 0, 5, 1, 0});
    addAttribute(builder, vertexName(), 3, positions, {0, 1, 2, 3, 4, 5, 6, 6, 5, 0});
    addGroup(builder, a, {3, 1, 0});
    upload(builder);
    EXPECT_THAT(downloaded<std::uint16_t>(bundle().indexBuffer()),
                ElementsAre(6, 5, 0, 4, 5, 6, 0, 1, 3, 1, 2, 3));
}

TEST_F(UploadTest, EqualVerticesAreUploadedOnce)
{
    ModelBuilder builder({}, 0);
    // The square as two triangles: six corners, four vertices.
    addTwoGroups(builder, 0, 0);
    upload(builder);
    EXPECT_EQ(bundle().vertexCount(), 4u);
    EXPECT_THAT(downloaded<float>(vertexAttribute(bundle(), vertexName()).buffer),
                areFloats(squarePositions));
}

TEST_F(UploadTest, StreamsBuiltBeforeAreUsed)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    builder.buildGPUFriendlyStreams(true);
    auto &attribute = Inspector::vertexAttributes(builder)[vertexName()];
    static_cast<float *>(attribute.gpuValues->data(0))[2] = 5;
    messages.clear();
    upload(builder);
    EXPECT_THAT(messages.texts(QtDebugMsg), IsEmpty()) << "nothing is welded again";
    EXPECT_EQ(downloaded<float>(vertexAttribute(bundle(), vertexName()).buffer)[2], 5.0f);
}

TEST_F(UploadTest, APositionOfFourFloatsCountsAsOneVertex)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 4, {0, 0, 0, 1, 1, 0, 0, 1, 0, 1, 0, 1}, {0, 1, 2});
    addGroup(builder, a, {0});
    builder.generateNormals(normalName());
    upload(builder);
    EXPECT_EQ(bundle().vertexCount(), 3u);
    EXPECT_EQ(vertexAttribute(bundle(), vertexName()).components, 4);
    EXPECT_THAT(downloaded<float>(vertexAttribute(bundle(), normalName()).buffer), SizeIs(3 * 3));
}

// Index width

TEST_F(UploadTest, IndicesAreSixteenBitsWideUpTo65534Vertices)
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
        builder.upload(&uploaded, instanceRecord(), vertexName(), QString(), GL_STREAM_DRAW,
                       GL_TRIANGLES);

        ASSERT_EQ(uploaded.bundleCount(), 1) << row.name;
        const DrawBuffers &only = *uploaded.bundle(0);
        EXPECT_EQ(only.vertexCount(), row.vertices) << row.name;
        ASSERT_EQ(only.indexType(), row.type) << row.name;
        EXPECT_EQ(only.indexCount(), static_cast<int>(corners.size())) << row.name;
        EXPECT_EQ(usageOf(*only.indexBuffer()), GL_STREAM_DRAW) << row.name;
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

TEST_F(UploadTest, NothingHappensWithoutWhatIsNeeded)
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

/// Whether they are floats shows only when they are built.
TEST_F(UploadTest, PositionsThatAreNotFloatsAreNotUploaded)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    builder.createVertexAttribute(vertexName(), 3, GL_DOUBLE, 12, 4);
    for (const int attempt : {1, 2}) {
        upload(builder);
        EXPECT_EQ(model.bundleCount(), 0) << attempt;
        EXPECT_TRUE(Inspector::drawCommands(builder).isEmpty()) << attempt;
    }
    addSquare(builder);
    upload(builder);
    EXPECT_EQ(model.bundleCount(), 1) << "the builder is none the worse for it";
}

/// As many vertices as there are normals, and drawn with the same triangles.
TEST_F(UploadTest, GeneratedNormalsMayStandForPositions)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    builder.generateNormals(normalName());
    upload(builder);
    builder.upload(&model, instanceRecord(), normalName(), QString(), GL_STATIC_DRAW, GL_TRIANGLES);
    ASSERT_EQ(model.bundleCount(), 2);
    EXPECT_EQ(bundle(1).vertexCount(), 4u);
    EXPECT_EQ(bundle(1).commands(), bundle(0).commands());
}

/// Their GPU values are what was made of them, not what they were made of.
TEST_F(UploadTest, OnlyTheGPUValuesOfPositionsMustBeFloats)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    builder.buildGPUFriendlyStreams(false);
    Inspector::vertexAttributes(builder)[vertexName()].values->setType(GL_UNSIGNED_INT);
    upload(builder);
    EXPECT_EQ(model.bundleCount(), 1);
}

TEST_F(UploadTest, NothingHappensWithoutACurrentContext)
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

TEST_F(UploadTest, GroupsWithoutFacesGiveNoBundle)
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

TEST_F(UploadTest, GroupsWithoutFacesAreLeftOutOfTheBundle)
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

TEST_F(UploadTest, GeneratedNormalsAreAnAttributeLikeTheOthers)
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
TEST_F(UploadTest, GeneratedNormalsAreSmoothAcrossWeldedVertices)
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

TEST_F(UploadTest, GeneratedNormalsOverwriteTheGPUSideOfAnExistingAttribute)
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

TEST_F(UploadTest, NormalsGoUnderAnyNameThatIsNotNull)
{
    const QString empty = QLatin1String("");
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    builder.generateNormals(empty);
    upload(builder);
    EXPECT_EQ(bundle().VAO()->attributes().size(), 2);
    EXPECT_TRUE(vertexAttribute(bundle(), empty).buffer);
}

TEST_F(UploadTest, VerticesOfNoTriangleHaveZeroNormals)
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

} // namespace
} // namespace OrvTest
