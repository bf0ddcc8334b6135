// Random OBJ files as bytes against the same files line by line.
#include "reference/ModelFiles.h"
#include "reference/ModelGenerator.h"
#include "support/RandomOBJText.h"
#include "support/ReadOBJ.h"

#include <gmock/gmock.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;
using ::testing::IsEmpty;

constexpr std::uint32_t Seed = 4711;

OBJScanLimits anyLimits(Dice &dice)
{
    OBJScanLimits limits;
    if (!dice.oneIn(3))
        limits.chunkBytes = static_cast<std::size_t>(dice.between(1, dice.oneIn(2) ? 40 : 4000));
    return limits;
}

TEST(OBJScanningRandom, FilesAsProgramsWriteThem)
{
    Dice dice(Seed);
    for (int i = 0; i < 6000 && !::testing::Test::HasFailure(); ++i) {
        const QByteArray text = randomOBJText(dice);
        EXPECT_THAT(differences(readByLines(text), readAsBytes(text, anyLimits(dice))), IsEmpty())
            << "seed " << Seed << ", file " << i << ":\n"
            << printable(text);
    }
}

TEST(OBJScanningRandom, GeneratedModels)
{
    Dice dice(Seed);
    int scanned = 0;
    constexpr int count = 300;
    for (quint32 seed = 0; seed < count && !::testing::Test::HasFailure(); ++seed) {
        const OrvReference::ModelFiles model = OrvReference::generateModel(seed);
        const OrvReference::WrittenModel written(model);
        const QString baseDir = QFileInfo(written.objPath()).absolutePath();
        QFile forBytes(written.objPath());
        QFile forLines(written.objPath());
        const ReadOBJ bytes = readAsBytes(forBytes, baseDir, anyLimits(dice));
        if (bytes.outcome == OBJScanOutcome::NeedsLineReader)
            continue;
        ++scanned;
        EXPECT_THAT(differences(readByLines(forLines, baseDir), bytes), IsEmpty())
            << "seed " << seed << ":\n"
            << OrvReference::printable(model);
    }
    EXPECT_GT(scanned, count * 9 / 10);
}

} // namespace
} // namespace OrvTest
