// The fast path up to the upload, taken by many threads at once. What they get
// is compared with what one thread gets afterwards, so that they also meet everything
// that is made on first use. Meant to be run under the thread sanitizer as well.
#include "support/AtOnce.h"
#include "support/MessageCapture.h"
#include "support/ModelBuilding.h"
#include "support/StreamContents.h"
#include "support/TemporaryModel.h"

#include "Libraries/MaterialLibraries.h"
#include "Preparing/GeometryPreparing.h"
#include "Scanning/OBJScanning.h"
#include <OrvModel/ModelBuilder.h>

#include <gmock/gmock.h>

#include <QtCore/QFile>

#include <string>
#include <vector>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr int rounds = 5;
const QString defaultGroup = QStringLiteral("<default>");
const QString redGroup = QStringLiteral("red");

/// Vertices of the sheet that objText() makes. Every fourth is so large that its arrays
/// take blocks of the memory that all threads share.
constexpr int widthOf(int number)
{
    return number + 40;
}
constexpr int heightOf(int number)
{
    return number % 4 == 3 ? 200 : 3;
}

/// A sheet of quads, an octagon, and now and then a line that only an OBJReader reads.
/// Odd numbers have texture coordinates.
QByteArray objText(int number)
{
    QByteArray text = "mtllib red.mtl\n";
    const int width = widthOf(number);
    const int height = heightOf(number);
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            text += "v " + QByteArray::number(column) + ' ' + QByteArray::number(row) + " 0." +
                    QByteArray::number(number) + '\n';
        }
    }
    if (number % 2 == 1)
        text += "vt 0.5\u00a00.25\n"; // a blank that is no plain text
    for (int row = 0; row + 1 < height; ++row) {
        for (int column = 0; column + 1 < width; ++column) {
            const int corner = row * width + column + 1;
            text += "f " + QByteArray::number(corner) + ' ' + QByteArray::number(corner + 1) + ' ' +
                    QByteArray::number(corner + 1 + width) + ' ' +
                    QByteArray::number(corner + width) + '\n';
        }
        text += "usemtl red\n";
    }
    text += "v 0 1 9\nv 1 0 9\nv 2 0 9\nv 3 1 9\nv 3 2 9\nv 2 3 9\nv 1 3 9\nv 0 2 9\n"
            "f -8 -7 -6 -5 -4 -3 -2 -1\n";
    return text;
}

/// A file read and prepared: bytes by attribute, indices, and commands as text.
struct Loaded
{
    OBJScanOutcome outcome = OBJScanOutcome::LimitExceeded;
    std::vector<std::string> lines;

    bool operator==(const Loaded &other) const
    {
        return outcome == other.outcome && lines == other.lines;
    }
};

Loaded load(const QString &path, const QString &directory)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text));
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(defaultGroup, InstanceData(), -1, 0);
    MaterialLibraries libraries(builder);
    OBJGeometry geometry;
    QString libraryPath;
    Loaded loaded;
    loaded.outcome = scanOBJFile(file, directory, libraries, geometry, libraryPath);
    if (loaded.outcome != OBJScanOutcome::Finished)
        return loaded;

    const PreparedGeometry model =
        prepareGeometry(std::move(geometry), {defaultGroup, redGroup}, &builder);
    for (const PreparedGeometry::Attribute &attribute : model.attributes) {
        loaded.lines.push_back(attribute.name.toStdString());
        loaded.lines.push_back(::testing::PrintToString(bitsOf(floats(attribute.values))));
    }
    loaded.lines.push_back(::testing::PrintToString(uints(model.indices)));
    for (const PreparedGeometry::Command &command : model.commands) {
        loaded.lines.push_back(command.group.toStdString() + ' ' +
                               std::to_string(command.firstIndex) + ' ' +
                               std::to_string(command.count));
    }
    return loaded;
}

TEST(LoaderThreads, ReadAndPrepareFilesOfTheirOwn)
{
    const TemporaryModel files;
    files.write(QStringLiteral("red.mtl"), "newmtl red\nKd 1 0 0\n");
    std::vector<QString> paths;
    for (int number = 0; number < threadsAtOnce; ++number)
        paths.push_back(
            files.write(QString::number(number) + QStringLiteral(".obj"), objText(number)));

    const MessageCapture messages;
    std::vector<std::vector<Loaded>> loaded(rounds, std::vector<Loaded>(threadsAtOnce));
    for (std::vector<Loaded> &round : loaded) {
        runAtOnce([&](int number) {
            const auto i = static_cast<std::size_t>(number);
            round[i] = load(paths[i], files.directory());
        });
    }

    for (std::size_t number = 0; number < threadsAtOnce; ++number) {
        const Loaded alone = load(paths[number], files.directory());
        EXPECT_EQ(alone.outcome, OBJScanOutcome::Finished);
        // One row of quads is drawn plain; the others and the octagon are red.
        const int quads = widthOf(static_cast<int>(number)) - 1;
        const int rows = heightOf(static_cast<int>(number)) - 1;
        const int plain = 6 * quads;
        const int red = 6 * quads * (rows - 1) + 3 * 6;
        ASSERT_GE(alone.lines.size(), 2u);
        EXPECT_EQ(alone.lines.end()[-2], "<default> 0 " + std::to_string(plain));
        EXPECT_EQ(alone.lines.end()[-1],
                  "red " + std::to_string(plain) + ' ' + std::to_string(red));
        for (const std::vector<Loaded> &round : loaded)
            EXPECT_TRUE(round[number] == alone) << "file " << number;
    }
    EXPECT_EQ(messages.texts(QtWarningMsg), std::vector<std::string>());
}

} // namespace
