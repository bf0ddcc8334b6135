// Memory over many loads in one window.
#include "WindowTest.h"

#include <QtCore/QFile>
#include <QtCore/QtGlobal>

#include <cstdio>
#include <unistd.h>

namespace {

using namespace OrvTest;

/// Bytes of memory that the process has at the moment.
qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

/// A strip of squares in two materials; another for each number.
QByteArray strip(int number)
{
    const int squares = 2000 + number % 7 * 500;
    QByteArray text = "mtllib m.mtl\nv 0 0 0\nv 0 1 0\n";
    for (int i = 1; i <= squares; ++i) {
        text += "v " + QByteArray::number(i) + " 0 " + QByteArray::number(i * number % 11) +
                "\nv " + QByteArray::number(i) + " 1 0\n";
        text += i % 2 ? "usemtl a\n" : "usemtl b\n";
        text += "f -4 -2 -1 -3\n";
    }
    return text;
}

class ManyLoadsTest : public WindowTest
{};

/// Long runs: ORV_WINDOW_LOADS. Every third model has textures.
TEST_F(ManyLoadsTest, MemoryDoesNotGrow)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the address sanitizer keeps what is freed; its leak check says more";
#endif
    bool isSet = false;
    const int asked = qEnvironmentVariableIntValue("ORV_WINDOW_LOADS", &isSet);
    const int loads = isSet ? asked : 60;
    // What is kept for the next load is there after some.
    const int warm = loads / 3;
    files.write(QStringLiteral("m.mtl"), "newmtl a\nKd 1 0 0\nnewmtl b\nKd 0 1 0\n");
    qint64 before = 0;
    for (int i = 0; i < loads; ++i) {
        if (i == warm)
            before = residentBytes();
        if (i % 3 == 0)
            open(QStringLiteral(ORV_SAMPLES_DIR "/lighthouse.obj"));
        else
            openModel(strip(i));
        ASSERT_FALSE(HasFailure()) << "load " << i;
    }
    ASSERT_GT(before, 0);
    const qint64 growth = residentBytes() - before;
    std::printf("%d loads: %lld bytes of memory, %lld more than after %d\n", loads,
                static_cast<long long>(before + growth), static_cast<long long>(growth), warm);
    // Far less than what one load takes: the textures alone are more.
    EXPECT_LT(growth, 16 << 20);
}

} // namespace
