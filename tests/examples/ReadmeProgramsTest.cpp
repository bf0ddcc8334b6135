// The programs that README.md shows are those of examples/, which other tests build and run.
#include <gtest/gtest.h>

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

namespace {

QString contentsOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

QString rootPath(const char *name)
{
    return QStringLiteral(ORV_ROOT "/") + QLatin1String(name);
}

/// What stands between ```cpp or ```cmake and the next ```.
QStringList codeOfReadme()
{
    const QString readme = contentsOf(rootPath("README.md"));
    const QRegularExpression block(QStringLiteral("^```(?:cpp|cmake)\n(.*?)^```$"),
                                   QRegularExpression::MultilineOption |
                                       QRegularExpression::DotMatchesEverythingOption);
    QStringList code;
    for (auto matches = block.globalMatch(readme); matches.hasNext();)
        code.append(matches.next().captured(1));
    return code;
}

} // namespace

TEST(ReadmeProgramsTest, ShowsAProgramThatDrawsAsAWhole)
{
    const QStringList code = codeOfReadme();
    EXPECT_TRUE(code.contains(contentsOf(rootPath("examples/draw/CMakeLists.txt"))));
    EXPECT_TRUE(code.contains(contentsOf(rootPath("examples/draw/main.cpp"))));
}

TEST(ReadmeProgramsTest, QuotesExamplesAsTheyAre)
{
    QString examples;
    QDirIterator files(rootPath("examples"), {QStringLiteral("*.cpp"), QStringLiteral("*.txt")},
                       QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        examples += contentsOf(files.next());
    ASSERT_FALSE(codeOfReadme().isEmpty());
    for (const QString &code : codeOfReadme())
        EXPECT_TRUE(examples.contains(code)) << "in no example:\n" << code.toStdString();
}
