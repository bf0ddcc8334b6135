// Sixteen threads at once, each with a builder, a library and texts of its own, and of
// a size of its own, so that they are never all at the same step. Meant to be run under
// the thread sanitizer as well.
//
// The first case must be the first use of the library in the process: this program has
// nothing but these tests, and it relies on their order.
#include "support/AtOnce.h"
#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/QtPrinting.h"
#include "support/StreamContents.h"
#include "support/TemporaryModel.h"
#include "support/TextReader.h"

#include <OrvCore/InstanceDataPlan.h>
#include <OrvCore/InstanceDataRegistry.h>
#include <OrvModel/MTLReader.h>
#include <OrvModel/ModelLoading.h>
#include <OrvModel/OBJReader.h>
#include <OrvModel/TriMeshVertexNormals.h>

#include <gmock/gmock.h>

#include <array>
#include <numeric>
#include <string>
#include <vector>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Inspector = ModelBuilderInspector;
using Indices = std::vector<unsigned>;

constexpr int rounds = 10;

QString name(const char *prefix, int number)
{
    return QLatin1String(prefix) + QString::number(number);
}

/// A row of squares; no two corners share a value, but neighbours touch.
///
///     3--2 7--6 11-10       What is welded, in order of first appearance:
///     |  | |  |  |  |       square 0 is 0 1 2 3, and every further one has its
///     0--1 4--5  8--9       left edge from its neighbour: 1 4 5 2, 4 6 7 5, ...
struct SquareRow
{
    explicit SquareRow(int number) : squares(static_cast<unsigned>(number) + 1)
    {
        for (unsigned square = 0; square < squares; ++square) {
            const auto x = static_cast<float>(square);
            const auto y = static_cast<float>(number);
            positions.insert(positions.end(), {x, y, 0, x + 1, y, 0, x + 1, y + 1, 0, x, y + 1, 0});
        }
    }

    unsigned cornerCount() const { return 4 * squares; }
    unsigned vertexCount() const { return 2 * (squares + 1); }

    /// The vertices of a square's corners after welding.
    std::array<unsigned, 4> welded(unsigned square) const
    {
        if (square == 0)
            return {0, 1, 2, 3};
        const unsigned below = square == 1 ? 1 : 2 * square; // lower right of the neighbour
        return {below, 2 * square + 2, 2 * square + 3, below + 1};
    }

    Indices weldedCorners() const
    {
        Indices corners;
        for (unsigned square = 0; square < squares; ++square) {
            const auto vertices = welded(square);
            corners.insert(corners.end(), vertices.begin(), vertices.end());
        }
        return corners;
    }

    /// A square a b c d is cut from b to d.
    void addTriangles(Indices &triangles, unsigned square) const
    {
        const auto [a, b, c, d] = welded(square);
        triangles.insert(triangles.end(), {a, b, d, b, c, d});
    }

    /// The squares of one group and then those of the other.
    Indices triangles() const
    {
        Indices all;
        for (unsigned square = 0; square < squares; square += 2)
            addTriangles(all, square);
        for (unsigned square = 1; square < squares; square += 2)
            addTriangles(all, square);
        return all;
    }

    unsigned squares;
    std::vector<float> positions;
};

/// A builder of a row: the even squares in one group and the odd ones in another.
void readInto(ModelBuilder &builder, const SquareRow &row)
{
    Indices corners(row.cornerCount());
    std::iota(corners.begin(), corners.end(), 0u);
    addAttribute(builder, vertexName(), 3, row.positions, corners);
    addFaces(builder, Indices(row.squares, 4));
    for (const unsigned parity : {0u, 1u}) {
        Indices faces;
        for (unsigned face = parity; face < row.squares; face += 2)
            faces.push_back(face);
        addGroup(builder, name("group", static_cast<int>(parity)), faces, parity);
    }
}

void prepareGroups(const SquareRow &row, ModelBuilder &builder)
{
    const auto positions = Inspector::vertexAttribute(builder, vertexName());
    QVector<unsigned> faceOffsets;
    for (unsigned face = 0; face < row.squares; ++face)
        faceOffsets.push_back(4 * face);
    for (const int parity : {0, 1}) {
        const QString group = name("group", parity);
        builder.prepareMaterialGroupForUpload(group, Inspector::materialGroup(builder, group),
                                              positions.gpuValues, positions.gpuIndices,
                                              faceOffsets);
    }
}

/// Everything between a builder and the upload, and what comes of it.
void buildARow(int number)
{
    const SquareRow row(number);
    ModelBuilder builder({}, ~quint64(0));
    readInto(builder, row);
    EXPECT_TRUE(builder.isValid());

    builder.buildGPUFriendlyStreams(number % 2 == 0);
    const auto positions = Inspector::vertexAttribute(builder, vertexName());
    EXPECT_EQ(uints(positions.gpuIndices), row.weldedCorners());
    EXPECT_EQ(floats(positions.gpuValues).size(), 3 * row.vertexCount());

    prepareGroups(row, builder);
    const Indices triangles = uints(Inspector::gpuIndices(builder));
    EXPECT_EQ(triangles, row.triangles());
    const auto &commands = Inspector::drawCommands(builder);
    ASSERT_EQ(commands.size(), 2); // the flags tell the groups apart
    const unsigned even = (row.squares + 1) / 2;
    EXPECT_EQ(commands[0].first().count, 6 * even);
    EXPECT_EQ(commands[1].first().count, 6 * (row.squares - even));

    // Counter-clockwise seen from above: the normals point down.
    std::vector<float> normals(3 * row.vertexCount());
    TriMeshVertexNormals(static_cast<int>(row.vertexCount()), static_cast<int>(triangles.size()),
                         floats(positions.gpuValues).data(), triangles.data(), normals.data());
    for (std::size_t vertex = 0; vertex < row.vertexCount(); ++vertex)
        EXPECT_EQ(normals[3 * vertex + 2], -1.0f) << "vertex " << vertex << " of " << number;
}

/// A library of number + 1 materials, whose colours tell them apart.
QByteArray libraryText(int number)
{
    QByteArray text = "# materials\n";
    for (int material = 0; material <= number; ++material) {
        text += "newmtl m" + QByteArray::number(material) + "\nKd 0.5 " +
                QByteArray::number(number) + ' ' + QByteArray::number(material) +
                "\nNs x\nmap_Kd " + QByteArray::number(material) + ".png\n";
    }
    return text;
}

void loadALibrary(const QString &path, int number)
{
    ModelBuilder builder({}, 0);
    EXPECT_TRUE(loadMaterialsFromMTLFile(path, builder));
    ASSERT_THAT(Inspector::materialGroups(builder), SizeIs(number + 1));
    for (int material = 0; material <= number; ++material) {
        const auto group = Inspector::materialGroup(builder, name("m", material));
        EXPECT_EQ(group.id, material);
        const std::array<float, 3> color = {0.5f, static_cast<float>(number),
                                            static_cast<float>(material)};
        EXPECT_EQ(group.instanceData.value(QStringLiteral("Kd")),
                  QByteArray(reinterpret_cast<const char *>(color.data()), sizeof color));
        EXPECT_TRUE(
            group.instanceData.texturePath(QStringLiteral("map_Kd"))
                .endsWith(QLatin1Char('/') + QString::number(material) + QLatin1String(".png")));
    }
}

/// number + 1 positions "v n i 0.25" and a face of as many corners, last one first.
void readOBJText(int number)
{
    std::string text;
    std::string face = "f";
    for (int i = 0; i <= number; ++i) {
        text += "v " + std::to_string(number) + ' ' + std::to_string(i) + " 0.25\n";
        face += " -" + std::to_string(i + 1);
    }
    TextReader<OBJReader> reader(text + face + " # the end\n");
    for (int i = 0; i <= number; ++i) {
        ASSERT_EQ(reader->getLineType(), OBJReader::LINE_V);
        ASSERT_TRUE(reader->parseLine());
        EXPECT_THAT(reader->getV(),
                    ElementsAre(static_cast<float>(number), static_cast<float>(i), 0.25f));
        reader->next();
    }
    ASSERT_EQ(reader->getLineType(), OBJReader::LINE_F);
    ASSERT_TRUE(reader->parseLine());
    ASSERT_EQ(reader->getNumVertices(), number + 1);
    for (int i = 0; i <= number; ++i)
        EXPECT_EQ(reader->getVertex(i).v, number - i);
    reader->next();
    EXPECT_FALSE(reader->valid());
}

void expectPlanOnce(const char *plan, int members)
{
    const InstanceDataRegistry &registry = InstanceDataRegistry::Instance();
    EXPECT_EQ(registry.planCount(QLatin1String(plan)), 1) << plan;
    ASSERT_TRUE(registry.plan(QLatin1String(plan))) << plan;
    EXPECT_EQ(registry.plan(QLatin1String(plan))->members().size(), members) << plan;
}

TEST(Threads, RegisterEachPlanOnceWhenAllAreTheFirst)
{
    const InstanceDataRegistry &registry = InstanceDataRegistry::Instance();
    ASSERT_EQ(registry.planCount(QStringLiteral("InstanceInfo")), 0);
    ASSERT_EQ(registry.planCount(QStringLiteral("OBJMaterial")), 0);

    const TemporaryModel files;
    const QString library = files.write(QStringLiteral("first.mtl"), libraryText(2));
    const MessageCapture messages;
    runAtOnce([&library](int number) {
        if (number % 2 == 0)
            buildARow(number);
        loadALibrary(library, 2);
        expectPlanOnce("InstanceInfo", 2);
        expectPlanOnce("OBJMaterial", 9);
    });
}

TEST(Threads, BuildModelsOfTheirOwn)
{
    const MessageCapture messages;
    for (int round = 0; round < rounds; ++round)
        runAtOnce(buildARow);
    // Each build tells what it welded, and nothing else is said.
    EXPECT_THAT(messages.texts(QtDebugMsg), SizeIs(rounds * threadsAtOnce));
    EXPECT_THAT(messages.messages(), SizeIs(rounds * threadsAtOnce));
    expectPlanOnce("InstanceInfo", 2);
}

TEST(Threads, LoadLibrariesOfTheirOwnAndOneThatAllShare)
{
    const TemporaryModel files;
    const QString shared = files.write(QStringLiteral("shared.mtl"), libraryText(5));
    std::vector<QString> own;
    for (int number = 0; number < threadsAtOnce; ++number)
        own.push_back(files.write(name("own", number), libraryText(number)));

    const MessageCapture messages;
    for (int round = 0; round < rounds; ++round) {
        runAtOnce([&](int number) {
            loadALibrary(own[static_cast<std::size_t>(number)], number);
            loadALibrary(shared, 5);
            ModelBuilder builder({}, 0);
            EXPECT_FALSE(loadMaterialsFromMTLFile(files.path(QStringLiteral("none")), builder));
        });
    }
    EXPECT_THAT(messages.messages(), IsEmpty());
    expectPlanOnce("InstanceInfo", 2);
    expectPlanOnce("OBJMaterial", 9);
}

TEST(Threads, ReadTextsOfTheirOwn)
{
    const MessageCapture messages;
    for (int round = 0; round < rounds; ++round)
        runAtOnce(readOBJText);
    EXPECT_THAT(messages.messages(), IsEmpty());
}

TEST(Threads, WarnWithoutMixingTheirWords)
{
    const MessageCapture messages;
    for (int round = 0; round < rounds; ++round) {
        runAtOnce([](int number) {
            ModelBuilder builder({}, 0);
            addGroup(builder, name("group", number), {});
            const unsigned face = 0;
            builder.addFacesToMaterialGroup(name("group", number), 1, &face, name("first", number));
            builder.addFacesToMaterialGroup(name("group", number), 1, &face, name("later", number));
        });
    }
    // addGroup() leaves the group without an object: the first named one takes it.
    std::vector<std::string> expected;
    for (int i = 0; i < rounds * threadsAtOnce; ++i) {
        const std::string number = std::to_string(i % threadsAtOnce);
        expected.push_back("adding object 'later" + number +
                           "'' to material group for object 'first" + number + "'");
    }
    EXPECT_THAT(messages.texts(QtWarningMsg), ::testing::UnorderedElementsAreArray(expected));
}

} // namespace
} // namespace OrvTest
