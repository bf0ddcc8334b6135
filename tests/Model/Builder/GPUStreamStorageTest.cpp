// Building in storage of the application's own.
#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"

#include <OrvModel/ModelBuilder.h>

#include <algorithm>

namespace OrvTest {
namespace {

using Halvard::Orv::ModelBuilder;
using Inspector = Halvard::Orv::ModelBuilderInspector;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// s0 corner counts, s1 combined indices, s2 positions, s3 position indices. The
/// corners use value 1, 0 and 1.
class RecordedBuildingTest : public ::testing::Test
{
protected:
    RecordedBuildingTest()
    {
        addFaces(builder, {3});
        addAttribute(builder, vertexName(), 3, {1, 2, 3, 4, 5, 6}, {1, 0, 1});
        log.clear();
    }

    const MessageCapture silence;
    QSharedPointer<RecordingAllocator> allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder{allocator, 0};
    CallLog &log = allocator->log();
};

TEST_F(RecordedBuildingTest, MergingMakesTheDefinedChangesInTheDefinedOrder)
{
    builder.buildGPUFriendlyStreams(true);
    EXPECT_THAT(log.changes(),
                ElementsAre("alloc UINT 3 -> s4", "s4.setData 0 3", // one index per corner
                            "alloc FLOAT 6 -> s5",                  // two vertices ...
                            "s5.setData 0 3", "s5.setData 3 3",     // ... a value each
                            "alloc FLOAT 6 -> s6", "s5.delete"));   // welded
}

TEST_F(RecordedBuildingTest, PerCornerMakesTheDefinedChangesInTheDefinedOrder)
{
    builder.buildGPUFriendlyStreams(false);
    EXPECT_THAT(log.changes(),
                ElementsAre("alloc UINT 3 -> s4",                                 //
                            "alloc FLOAT 9 -> s5",                                //
                            "s5.setData 0 3", "s5.setData 3 3", "s5.setData 6 3", //
                            "alloc FLOAT 6 -> s6", "s5.delete"));
}

TEST_F(RecordedBuildingTest, UsesFewOperationsAndOnlyTheStartOfTheData)
{
    for (const bool merging : {true, false}) {
        addAttribute(builder, vertexName(), 3, {1, 2, 3, 4, 5, 6}, {1, 0, 1});
        log.clear();
        builder.buildGPUFriendlyStreams(merging);
        EXPECT_THAT(log.operations(),
                    ElementsAre("alloc", "data", "delete", "setData", "size", "type"));
        const std::vector<std::string> lines = log.lines();
        EXPECT_TRUE(std::all_of(lines.begin(), lines.end(), [](const std::string &line) {
            const std::size_t call = line.find(".data ");
            return call == std::string::npos || line.substr(call) == ".data 0";
        })) << ::testing::PrintToString(lines);
    }
}

// The table's own order decides which attribute comes first; every walk sees the
// same.
TEST(RecordedBuilding, AttributesAreBuiltInTheOrderOfTheTable)
{
    const MessageCapture silence;
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0);
    addFaces(builder, {3});
    // Components tell the attributes apart: 1, 2 and 4.
    addAttribute(builder, vertexName(), 1, {1, 2, 3}, {0, 1, 2});
    addAttribute(builder, normalName(), 2, {1, 2}, {0, 0, 0});
    addAttribute(builder, texCoordName(), 4, {1, 2, 3, 4}, {0, 0, 0});
    allocator->log().clear();

    builder.buildGPUFriendlyStreams(false);

    std::vector<std::string> expected = {"alloc UINT 3 -> s8"};
    int stream = 9;
    for (const auto &attribute : qAsConst(Inspector::vertexAttributes(builder))) {
        const int components = attribute.components;
        const std::string name = 's' + std::to_string(stream++);
        expected.push_back("alloc FLOAT " + std::to_string(3 * components) + " -> " + name);
        for (int corner = 0; corner < 3; ++corner) {
            expected.push_back(name + ".setData " + std::to_string(components * corner) + ' ' +
                               std::to_string(components));
        }
    }
    std::vector<std::string> changes = allocator->log().changes();
    ASSERT_GE(changes.size(), expected.size());
    changes.resize(expected.size()); // what follows is welding
    EXPECT_EQ(changes, expected);
}

TEST_F(RecordedBuildingTest, WithoutMemoryTheAttributesStayUnbuilt)
{
    for (const bool merging : {true, false}) {
        // Of the three streams, the last one is for the welded values.
        for (unsigned long available = 0; available < 3; ++available) {
            allocator->failAfter(available);
            builder.buildGPUFriendlyStreams(merging);
            const auto attribute = Inspector::vertexAttribute(builder, vertexName());
            EXPECT_FALSE(attribute.gpuValues) << available;
            EXPECT_FALSE(attribute.gpuIndices) << available;
        }
        EXPECT_THAT(silence.messages(), IsEmpty());
    }
    // The same builder builds once there is memory again.
    allocator->failAfter(3);
    builder.buildGPUFriendlyStreams(true);
    EXPECT_THAT(uints(Inspector::vertexAttribute(builder, vertexName()).gpuIndices),
                ElementsAre(0, 1, 0));
}

TEST_F(RecordedBuildingTest, WithStreamsThatAreTooShortTheAttributesStayUnbuilt)
{
    for (const bool merging : {true, false}) {
        // Indices, values, welded values: a write beyond any of them would be noticed.
        for (unsigned long whole = 0; whole < 3; ++whole) {
            allocator->shortenAfter(whole);
            builder.buildGPUFriendlyStreams(merging);
            const auto attribute = Inspector::vertexAttribute(builder, vertexName());
            EXPECT_FALSE(attribute.gpuValues) << whole;
            EXPECT_FALSE(attribute.gpuIndices) << whole;
        }
    }
    EXPECT_THAT(silence.messages(), IsEmpty());
}

} // namespace
} // namespace OrvTest
