// The program where the system gives it little memory.
#include "cli/OrvProcess.h"
#include "support/TemporaryModel.h"

#include <gmock/gmock.h>

namespace {

using namespace OrvTest;
using ::testing::AnyOf;
using ::testing::HasSubstr;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool CanLimitMemory = false; // sanitizers need an address space of their own
#else
constexpr bool CanLimitMemory = true;
#endif

/// Three positions; then so many more, and as many faces.
QByteArray pairsOfLines(int count)
{
    return "v 0 0 0\nv 1 0 0\nv 0 1 0\n" + QByteArray("f 1 2 3\nv 1 2 3\n").repeated(count);
}

/// What does not differ from run to run.
std::string withoutTimes(const OrvRun &run)
{
    const std::string out = run.out.toStdString();
    return out.substr(0, out.find("\nMilliseconds"));
}

class LittleMemoryTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!CanLimitMemory)
            GTEST_SKIP() << "sanitizers need an address space of their own";
    }

    /// `orv info` where the address space ends at so many kilobytes.
    OrvRun infoWithin(int kilobytes, const QString &model, const QString &threads) const
    {
        return runOrvFromShell(
            QStringLiteral("ulimit -v %1; exec \"$0\" info --threads \"$2\" \"$1\"").arg(kilobytes),
            {model, threads});
    }

    const TemporaryModel _files;
};

/// A thread of a pool has a stack of 8 MB: some limits leave no room for one, some for one but
/// not for the next, and some for both but not for the model. None of that makes a difference.
TEST_F(LittleMemoryTest, AnyLimitGivesTheResultOrExitStatusThree)
{
    constexpr int Faces = 2'400'000;
    const QString model = _files.write(QStringLiteral("large.obj"), pairsOfLines(Faces));
    // Three floats and three indices for each "v" and "f", of four bytes.
    constexpr int NeverEnough = Faces / 1024 * (3 + 3) * 4;

    const OrvRun whole = runOrv({QStringLiteral("info"), model});
    ASSERT_EQ(whole.status, 0) << whole.err.constData();
    const std::string shown = model.toStdString();
    const std::string notLoaded = "orv: warning: '" + shown +
                                  "' is not loaded: there is not enough memory for it\n"
                                  "orv: Failed to load OBJ file '" +
                                  shown + "': not enough memory.\n";
    for (const char *threads : {"1", "2", "8"}) {
        int refused = 0;
        int loaded = 0;
        for (int limit = 90'000; loaded == 0 && limit < 3'000'000; limit += 35'000) {
            SCOPED_TRACE("--threads " + std::string(threads) + ", " + std::to_string(limit) +
                         " kB");
            const OrvRun run = infoWithin(limit, model, QLatin1String(threads));
            if (run.status == 0) {
                EXPECT_GT(limit, NeverEnough);
                EXPECT_EQ(withoutTimes(run), withoutTimes(whole));
                EXPECT_EQ(run.err, "");
                ++loaded;
                continue;
            }
            EXPECT_EQ(run.status, 3);
            EXPECT_EQ(run.out, "");
            EXPECT_THAT(run.err.toStdString(),
                        AnyOf(notLoaded, "orv: There is not enough memory.\n"));
            ++refused;
        }
        EXPECT_GT(refused, 0);
        EXPECT_EQ(loaded, 1);
    }
}

/// Threads get a stack of the largest size that a stack may have. There is room for everything
/// but that.
TEST_F(LittleMemoryTest, ThreadsThatCannotBeStartedAreDoneWithout)
{
    const QString model = _files.write(QStringLiteral("m.obj"), pairsOfLines(300'000));
    const auto runWithoutThreads = [](const QStringList &arguments) {
        return runOrvFromShell(
            QStringLiteral("ulimit -s 8000000; ulimit -v 4000000; exec \"$0\" \"$@\""), arguments);
    };
    const QStringList calls[] = {
        {QStringLiteral("info"), QStringLiteral("--threads"), QStringLiteral("4")},
        {QStringLiteral("check")},
        {QStringLiteral("fix"), QStringLiteral("-o"), QStringLiteral("-")}};
    for (const QStringList &call : calls) {
        SCOPED_TRACE(call.join(QLatin1Char(' ')).toStdString());
        const OrvRun free = runOrv(call + QStringList(model));
        const OrvRun run = runWithoutThreads(call + QStringList(model));
        EXPECT_EQ(free.status, 0);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(withoutTimes(run), withoutTimes(free));
        EXPECT_EQ(run.err.toStdString(), free.err.toStdString());
    }
    const OrvRun verbose =
        runWithoutThreads(calls[0] + QStringList{QStringLiteral("--verbose"), model});
    EXPECT_THAT(verbose.err.toStdString(), HasSubstr("QThread::start: Thread creation error"));
}

} // namespace
