// Models that do not fit: into a stream, into 32-bit counts, or into memory.
#include "support/BothPaths.h"
#include "support/FailingMalloc.h"
#include "support/GLTest.h"
#include "support/ModelDifferences.h"
#include "support/ModelReadBack.h"
#include "support/TemporaryModel.h"

#include <OrvGL/GPUModel.h>
#include <OrvModel/ModelLoading.h>

#include <gmock/gmock.h>

#include <QtCore/QFile>

#include <cstdio>
#include <memory>
#include <sys/resource.h>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

QString failure(const QString &fileName)
{
    return QStringLiteral("Failed to load OBJ file '%1'").arg(fileName);
}

std::string tooMany(const QString &fileName, const char *what)
{
    return "'" + fileName.toStdString() + "' is not loaded: it has more than " + what +
           ", and a stream ends at 2^31 - 1 bytes; split it into several files";
}

/// A square of `side` x `side` points, with two triangles between each four of them.
QByteArray grid(int side)
{
    QByteArray text;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            text += "v " + QByteArray::number(x) + ' ' + QByteArray::number(y) + " 0\n";
    }
    for (int y = 1; y < side; ++y) {
        for (int x = 1; x < side; ++x) {
            const QByteArray here = QByteArray::number(y * side + x);
            const QByteArray there = QByteArray::number((y - 1) * side + x + 1);
            text += "f " + here + ' ' + there + ' ' + QByteArray::number(y * side + x + 1) +
                    "\nf " + there + ' ' + here + ' ' + QByteArray::number((y - 1) * side + x) +
                    '\n';
        }
    }
    return text;
}

class MemoryLimit : public GLTest
{
protected:
    QString model(const QByteArray &text) const
    {
        return files.write(QStringLiteral("model.obj"), text);
    }

    TemporaryModel files;
};

/// Twelve floats of positions, so many faces and corners: each limit is met exactly, and
/// passed by one line more.
TEST_F(MemoryLimit, MoreThanAStreamHoldsIsRefusedOnBothPaths)
{
    const struct
    {
        const char *line;
        size_t elements; ///< of a stream that a line takes
        const char *excess;
    } rows[] = {
        {"v 1 2 3\n", 3, "21 numbers in \"v\" lines"},
        {"vn 1 2 3\n", 3, "21 numbers in \"vn\" lines"},
        {"vt 1 2\n", 2, "14 numbers in \"vt\" lines"},
        {"f 1 1 1\n", 9, "21 corners of faces"}, // each takes three floats of a position
        {"f +1 1\n", 6, "14 corners of faces"},
        {"f\n", 1, "7 faces"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.line);
        OBJScanLimits limits;
        limits.streamElements = 7 * row.elements;
        const QByteArray line = row.line;
        const UploadedModel fits = expectSameOnBothPaths(model(line.repeated(7)), limits);
        EXPECT_EQ(fits.error, UploadedModel::untouchedError());
        const QString fileName = model(line.repeated(8));
        const UploadedModel passes = expectSameOnBothPaths(fileName, limits);
        EXPECT_EQ(passes.error, failure(fileName));
        EXPECT_THAT(passes.warnings(), ElementsAre(tooMany(fileName, row.excess)));
    }
}

TEST_F(MemoryLimit, TheFirstOfTwoFailuresInAFileCounts)
{
    OBJScanLimits limits;
    limits.streamElements = 6;
    const QByteArray points = QByteArray("v 1 2 3\n").repeated(3);
    const QString behind = model(points + "mtllib none.mtl\n");
    EXPECT_EQ(expectSameOnBothPaths(behind, limits).error, failure(behind));
    const QString before = model("mtllib none.mtl\n" + points);
    EXPECT_EQ(
        expectSameOnBothPaths(before, limits).error,
        QStringLiteral("Failed to load MTL file '%1'").arg(files.path(QStringLiteral("none.mtl"))));
}

/// The counts behind the real limits fit what they are handed over in.
TEST(MemoryLimits, LeaveRoomInSignedCounts)
{
    const OBJScanLimits limits;
    constexpr size_t most = 0x7fffffff;
    EXPECT_LE(limits.streamElements * sizeof(float), most);
    EXPECT_LE(limits.corners() * 3 * sizeof(float), most) << "a value for each corner";
    EXPECT_LE(limits.corners() * 3 * sizeof(unsigned), most) << "three indices a triangle";
}

/// The address space of the process ends soon while it lives.
class AddressLimit
{
public:
    explicit AddressLimit(size_t bytesMore)
    {
        getrlimit(RLIMIT_AS, &_before);
        rlimit limit = _before;
        limit.rlim_cur = used() + bytesMore;
        EXPECT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
    }
    ~AddressLimit() { setrlimit(RLIMIT_AS, &_before); }
    AddressLimit(const AddressLimit &) = delete;
    AddressLimit &operator=(const AddressLimit &) = delete;

private:
    static size_t used()
    {
        unsigned long pages = 0;
        if (FILE *file = std::fopen("/proc/self/statm", "r")) {
            EXPECT_EQ(std::fscanf(file, "%lu", &pages), 1);
            std::fclose(file);
        }
        return pages * 4096;
    }

    rlimit _before{};
};

/// A load in which memory ends; the model is looked at afterwards.
struct LimitedLoad
{
    /// \param limit makes what is alive while the file is loaded.
    template <typename MakeLimit>
    LimitedLoad(const QString &fileName, LoaderPath path, MakeLimit limit)
    {
        const MessageCapture messages;
        {
            const auto limited = limit();
            model.reset(loadModelByPath(fileName, error, path));
            failures = FailingMalloc::failures();
            blocksLeft = FailingMalloc::blocksLeft();
        }
        warnings = messages.texts(QtWarningMsg);
    }

    bool isWhole() const { return model && model->bundleCount() > 0; }

    QString error = UploadedModel::untouchedError();
    std::unique_ptr<GPUModel> model;
    std::vector<std::string> warnings;
    long failures = 0;
    long blocksLeft = 0;
};

/// What may come of it: nothing, an empty model since OpenGL had no room, or all of it.
void expectAllOrNothing(const LimitedLoad &load, const UploadedModel &whole,
                        const QString &fileName)
{
    if (!load.model) {
        EXPECT_EQ(load.error, failure(fileName));
        ASSERT_FALSE(load.warnings.empty());
        EXPECT_EQ(load.warnings.back(), "'" + fileName.toStdString() +
                                            "' is not loaded: there is not enough memory for it");
        return;
    }
    EXPECT_EQ(load.error, UploadedModel::untouchedError());
    if (!load.isWhole()) {
        EXPECT_THAT(load.warnings, Contains(HasSubstr("OpenGL error")));
        return;
    }
    UploadedModel loaded = whole; // but for messages, which were taken elsewhere
    loaded.bundles = readBack(*load.model);
    EXPECT_THAT(differences(whole, loaded), IsEmpty());
}

TEST_F(MemoryLimit, AnAddressSpaceThatEndsGivesAllOrNothing)
{
    if (!FailingMalloc::isPossible())
        GTEST_SKIP() << "sanitizers need an address space of their own";
    const QString fileName = model(grid(250));
    for (const LoaderPath path : BothPaths) {
        const UploadedModel whole = loadByPath(fileName, path);
        ASSERT_EQ(whole.bundle().vertexCount, 62500u);
        int refused = 0;
        int loaded = 0;
        for (size_t megabytes = 0; megabytes <= 512; megabytes += megabytes / 2 + 1) {
            SCOPED_TRACE(megabytes);
            const LimitedLoad load(fileName, path, [=] { return AddressLimit(megabytes << 20); });
            expectAllOrNothing(load, whole, fileName);
            (load.isWhole() ? loaded : refused) += 1;
        }
        EXPECT_GT(refused, 3);
        EXPECT_GT(loaded, 0);
    }
}

/// Where the sanitizer has the memory, it can be told to give no large blocks; it also
/// tells what is never freed. See CMakeLists.txt.
TEST(MemoryLimits, LargeBlocksThatAreNotToBeHad)
{
    if (qEnvironmentVariableIsEmpty("ORV_NO_LARGE_BLOCKS"))
        GTEST_SKIP() << "run by MemoryLimitTest.NoLargeBlocks, under the address sanitizer";
    const TemporaryModel files;
    const QByteArray part = grid(50); // the test gets no large blocks either
    const QString fileName = files.write(QStringLiteral("model.obj"), part);
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::Append));
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(file.write(part), part.size());
    file.close();
    for (const LoaderPath path : BothPaths) {
        const UploadedModel outcome = loadByPath(fileName, path);
        EXPECT_TRUE(outcome.isNull);
        EXPECT_EQ(outcome.error, failure(fileName));
        EXPECT_THAT(outcome.warnings(),
                    ElementsAre("'" + fileName.toStdString() +
                                "' is not loaded: there is not enough memory for it"));
    }
}

/// Every large block that a load asks for is once the first that is not to be had.
TEST_F(MemoryLimit, AnyAllocationMayBeTheOneThatFails)
{
    if (!FailingMalloc::isPossible())
        GTEST_SKIP() << "the sanitizer has an allocator of its own";
    files.write(QStringLiteral("m.mtl"), "newmtl a\nKd 1 0 0\n");
    const QString fileName = model("mtllib m.mtl\nusemtl a\nf 1 2 3\nusemtl <default>\n" +
                                   grid(60) + "f 1 2 3 63 62 61\nf \xc3\xa4\n");
    for (const LoaderPath path : BothPaths) {
        const UploadedModel whole = loadByPath(fileName, path);
        int refused = 0;
        bool failing = true;
        for (long succeeding = 0; failing; ++succeeding) {
            SCOPED_TRACE(succeeding);
            const LimitedLoad load(fileName, path, [=] { return FailingMalloc(succeeding); });
            expectAllOrNothing(load, whole, fileName);
            failing = load.failures > 0;
            if (!load.model) {
                EXPECT_EQ(load.blocksLeft, 0) << "a leak";
                ++refused;
            }
            ASSERT_LT(succeeding, 1000);
        }
        EXPECT_GT(refused, 5);
    }
}

} // namespace
