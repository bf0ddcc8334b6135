// The loader's two roads on the same files: everything on the GPU, every record
// and every message must be the same.
#include "support/GLTest.h"
#include "support/GPUReadBack.h"
#include "support/LoadedOBJ.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <OBJRoads.h>

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/GPUModel.h>

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>

#include <map>
#include <memory>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAreArray;

namespace {

/// What one road makes of a file.
struct Outcome
{
    bool isModel = false;
    QString errorMessage;
    std::vector<Message> messages;
    int bundleCount = 0;
    unsigned vertexCount = 0;
    unsigned indexType = 0;
    QByteArray indices;
    std::map<QString, QByteArray> attributes;
    QVector<DrawElementsIndirectCommand> commands;
    std::vector<QString> materialNames;
    std::vector<std::vector<std::string>> records;
};

/// The statistics line begins with the address of a builder, which differs.
void forgetAddress(Message &message)
{
    if (message.text.rfind("0x", 0) == 0)
        message.text.erase(0, message.text.find(' '));
}

void readBundle(GPUModel &model, Outcome &outcome)
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

Outcome load(const QString &fileName, OBJRoad road)
{
    Outcome outcome;
    outcome.errorMessage = QStringLiteral("untouched");
    MessageCapture capture;
    const std::unique_ptr<GPUModel> model(
        loadModelFromOBJFile(fileName, outcome.errorMessage, road));
    outcome.messages = capture.messages();
    for (Message &message : outcome.messages)
        forgetAddress(message);
    outcome.isModel = model != nullptr;
    outcome.bundleCount = model ? model->bundleCount() : 0;
    if (outcome.bundleCount == 1)
        readBundle(*model, outcome);
    return outcome;
}

void expectSameOnBothRoads(const QString &fileName)
{
    SCOPED_TRACE(fileName.toStdString());
    const Outcome bytes = load(fileName, OBJRoad::Bytes);
    const Outcome lines = load(fileName, OBJRoad::Lines);
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
}

/// Every OBJ file below a folder.
QStringList modelsBelow(const QString &folder)
{
    QStringList files;
    QDirIterator found(folder, {QStringLiteral("*.obj")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (found.hasNext())
        files.append(found.next());
    return files;
}

class LoaderRoadsTest : public GLTest
{};

} // namespace

TEST_F(LoaderRoadsTest, AgreeOnEverySample)
{
    const QStringList samples = modelsBelow(QStringLiteral(ORV_SAMPLES_DIR));
    ASSERT_FALSE(samples.isEmpty());
    for (const QString &sample : samples)
        expectSameOnBothRoads(sample);
}

TEST_F(LoaderRoadsTest, AgreeOnRealModels)
{
    const QStringList models = modelsBelow(QStringLiteral(ORV_SHARED_MODELS_DIR));
    if (models.isEmpty())
        GTEST_SKIP() << "no folder of real models beside the repository";
    for (const QString &model : models)
        expectSameOnBothRoads(model);
}

TEST_F(LoaderRoadsTest, AgreeOnOddFiles)
{
    const std::vector<std::pair<const char *, QByteArray>> files = {
        {"empty", ""},
        {"values without faces", "v 1 2 3\nvn 0 0 1\n"},
        {"faces without values", "f 1 2 3\n"},
        {"values after the faces", "f 1 2 3\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"},
        {"normals after the last face", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nvn 0 0 1\n"},
        {"late normals", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nvn 0 0 1\nf 1//1 2//1 3//1\n"},
        {"wild and absent indices",
         "v 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 1\nf 1 2/9 3/-5\nf -9/1 2147483647/1 0/0\n"},
        {"faces of zero, one and two corners", "v 0 0 0\nf\nf 1\nf 1 1\nf # 1\n"},
        {"faces under an unknown material", "v 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl x\nf 1 2 3\n"},
        {"a missing library", "v 0 0 0\nmtllib nowhere.mtl\n"},
        {"a library without a name", "v 0 0 0\nmtllib\n"},
        {"no end of line", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3"},
        {"carriage returns everywhere", "v 0 0\r 0\r\nv 1\r 0 0\r\nv 0 1 0\r\n\rf 1 2 3\r\n"},
        {"a polygon that crosses itself",
         "v 0 0 0\nv 4 4 0\nv 4 0 0\nv 0 4 0\nv 2 5 0\nv 1 1 0\nf 1 2 3 4 5 6\n"},
        {"UTF-8 with a mark", "\xEF\xBB\xBFv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl \xC3\xA9\nf 1 2 3\n"},
        {"UTF-16", QByteArray("\xFF\xFEv\0 \0001\0 \0002\0 \0003\0\n\0f\0 \0001\0\n\0", 26)},
        {"blanks beyond ASCII", "v\xC2\xA0"
                                "1 2\xE3\x80\x80"
                                "3\nf 1 1 1\n"},
        {"zero bytes", QByteArray("v 1 2 3\0\nf 1 1 1\n", 17)},
        {"numbers of every kind",
         "v 1e3 -.5 +5.\nv inf nan 0x10\nv 1,5 1e 3.4028236e38\nv -0 1e-46 1e400\nf 1 2 3 4\n"}};
    for (const auto &[name, text] : files) {
        SCOPED_TRACE(name);
        TemporaryModel model;
        expectSameOnBothRoads(model.write(QStringLiteral("odd.obj"), text));
    }
}

/// Seen from far away a face's winding test is mostly rounding, and faces turn
/// over; both roads must turn over the same.
TEST_F(LoaderRoadsTest, AgreeFarFromTheOrigin)
{
    QByteArray text;
    for (int i = 0; i < 3000; ++i) {
        const int x = 100000 + (i * 7919) % 1000;
        const int y = -70000 + (i * 104729) % 1000;
        const int z = 90000 + (i * 129971) % 1000;
        text += "v " + QByteArray::number(x / 7.0) + ' ' + QByteArray::number(y / 11.0) + ' ' +
                QByteArray::number(z / 13.0) + '\n';
    }
    for (int i = 1; i + 3 <= 3000; ++i) {
        text += "f " + QByteArray::number(i) + ' ' + QByteArray::number(i + 1) + ' ' +
                QByteArray::number(i + 2) +
                (i % 2 ? QByteArray("\n") : ' ' + QByteArray::number(i + 3) + '\n');
    }
    TemporaryModel model;
    expectSameOnBothRoads(model.write(QStringLiteral("far.obj"), text));
}
