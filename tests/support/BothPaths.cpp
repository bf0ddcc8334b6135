#include "support/BothPaths.h"

#include "support/LoadedOBJ.h"

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/BufferObject.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/VertexArrayObject.h>

#include <gmock/gmock.h>

#include <memory>

namespace OrvTest {

using namespace Halvard::Orv;
using ::testing::ElementsAreArray;

namespace {

/// The statistics line begins with the address of a builder, which differs.
void forgetAddress(Message &message)
{
    if (message.text.rfind("0x", 0) == 0)
        message.text.erase(0, message.text.find(' '));
}

void readBundle(GPUModel &model, RoadOutcome &outcome)
{
    const DrawBuffers &bundle = *model.bundle(0);
    outcome.vertexCount = bundle.vertexCount();
    outcome.indexType = bundle.indexType();
    outcome.indices = bundle.indexBuffer()->download();
    outcome.commands = bundle.commands();
    for (const auto &attribute : bundle.VAO()->attributes())
        outcome.attributes[attribute.name] = attribute.buffer->download();
    for (int slot = 0; slot < outcome.commands.size(); ++slot)
        outcome.materialNames.push_back(model.materialName(0, slot));
    for (InstanceDataCollection *collection : {model.materials(0), model.instances(0)}) {
        for (const InstanceData &record : collection->records())
            outcome.records.push_back(described(record));
    }
}

} // namespace

std::vector<std::string> RoadOutcome::warnings() const
{
    std::vector<std::string> texts;
    for (const Message &message : messages) {
        if (message.type == QtWarningMsg)
            texts.push_back(message.text);
    }
    return texts;
}

RoadOutcome loadByRoad(const QString &fileName, LoaderPath road, const OBJScanLimits &limits)
{
    RoadOutcome outcome;
    outcome.errorMessage = QStringLiteral("untouched");
    MessageCapture capture;
    const std::unique_ptr<GPUModel> model(
        loadModelByPath(fileName, outcome.errorMessage, road, limits));
    outcome.messages = capture.messages();
    for (Message &message : outcome.messages)
        forgetAddress(message);
    outcome.isModel = model != nullptr;
    outcome.bundleCount = model ? model->bundleCount() : 0;
    if (outcome.bundleCount == 1)
        readBundle(*model, outcome);
    return outcome;
}

RoadOutcome expectSameOnBothRoads(const QString &fileName, const OBJScanLimits &limits)
{
    SCOPED_TRACE(fileName.toStdString());
    RoadOutcome bytes = loadByRoad(fileName, LoaderPath::Fast, limits);
    const RoadOutcome lines = loadByRoad(fileName, LoaderPath::Lines, limits);
    EXPECT_EQ(bytes.isModel, lines.isModel);
    EXPECT_EQ(bytes.errorMessage, lines.errorMessage);
    EXPECT_THAT(bytes.messages, ElementsAreArray(lines.messages));
    EXPECT_EQ(bytes.bundleCount, lines.bundleCount);
    EXPECT_EQ(bytes.vertexCount, lines.vertexCount);
    EXPECT_EQ(bytes.indexType, lines.indexType);
    EXPECT_TRUE(bytes.indices == lines.indices);
    EXPECT_TRUE(bytes.attributes == lines.attributes);
    EXPECT_TRUE(bytes.commands == lines.commands);
    EXPECT_EQ(bytes.materialNames, lines.materialNames);
    EXPECT_EQ(bytes.records, lines.records);
    return bytes;
}

} // namespace OrvTest
