// What is opened and what is not; the loaders' tests show what they make of it.
#include "Files/FileOpening.h"

#include "support/TemporaryModel.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

FileTrouble troubleWith(const QString &path)
{
    QFile file(path);
    const FileTrouble trouble = openWithoutWaiting(file, QIODevice::ReadOnly);
    EXPECT_EQ(file.isOpen(), trouble == FileTrouble::None) << path.toStdString();
    return trouble;
}

TEST(FileOpening, OpensRegularFilesAndTheNullDevice)
{
    const TemporaryModel files;
    const QString path = files.write(QStringLiteral("a"), "text");
    EXPECT_EQ(troubleWith(path), FileTrouble::None);
    EXPECT_EQ(troubleWith(QStringLiteral("/dev/null")), FileTrouble::None);
    const QString link = files.path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(path, link));
    EXPECT_EQ(troubleWith(link), FileTrouble::None);
}

TEST(FileOpening, SaysWhyAnythingElseIsNotOpen)
{
    const TemporaryModel files;
    EXPECT_EQ(troubleWith(files.path(QStringLiteral("none"))), FileTrouble::Missing);
    EXPECT_EQ(troubleWith(QString()), FileTrouble::Missing);
    EXPECT_EQ(troubleWith(files.directory()), FileTrouble::Directory);
    EXPECT_EQ(troubleWith(QStringLiteral("/dev/zero")), FileTrouble::NotRegular);
    const QString pipe = files.path(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(troubleWith(pipe), FileTrouble::NotRegular);
}

TEST(FileOpening, AFileThatMayNotBeReadKnowsWhy)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "root may read everything";
    const TemporaryModel files;
    const QString path = files.write(QStringLiteral("a"), "text");
    ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::Permissions()));
    QFile file(path);
    EXPECT_EQ(openWithoutWaiting(file, QIODevice::ReadOnly), FileTrouble::Unreadable);
    EXPECT_EQ(file.errorString(), QStringLiteral("Permission denied"));
}

TEST(FileOpening, FilesOfTheKernelAreKnown)
{
    const TemporaryModel files;
    QFile stored(files.write(QStringLiteral("a"), "text"));
    ASSERT_EQ(openWithoutWaiting(stored, QIODevice::ReadOnly), FileTrouble::None);
    EXPECT_FALSE(isMadeUpByTheKernel(stored));

    QFile madeUp(QStringLiteral("/proc/self/status"));
    if (!QFileInfo::exists(QStringLiteral("/proc/self/status")))
        GTEST_SKIP() << "no /proc";
    ASSERT_EQ(openWithoutWaiting(madeUp, QIODevice::ReadOnly), FileTrouble::None);
    EXPECT_TRUE(isMadeUpByTheKernel(madeUp));

    // A descriptor that /proc leads to is what it is.
    QFile led(QStringLiteral("/proc/self/fd/%1").arg(stored.handle()));
    ASSERT_EQ(openWithoutWaiting(led, QIODevice::ReadOnly), FileTrouble::None);
    EXPECT_FALSE(isMadeUpByTheKernel(led));
}

} // namespace
