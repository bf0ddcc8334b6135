// docs/checks.md: each code with the smallest file that shows it.
#include "Check/ChecksPage.h"

#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <orv/CheckReport.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QSet>

#include <FindingCodes.h>

namespace {

using namespace Halvard::Orv;
using OrvTest::CheckExample;

std::vector<CheckExample> examples()
{
    return OrvTest::readChecksPage(QStringLiteral(ORV_CHECKS_PAGE));
}

/// What `orv check model.obj` prints in the directory of the example.
QString checked(const CheckExample &example, ModelFindings &findings)
{
    const OrvTest::TemporaryModel directory;
    example.write(directory.directory());
    const QString before = QDir::currentPath();
    QDir::setCurrent(directory.directory());
    QString reason;
    EXPECT_EQ(checkModel(QStringLiteral("model.obj"), findings, reason), CheckStatus::Done)
        << reason.toStdString();
    QDir::setCurrent(before);
    return Cli::findingLines(findings, 0);
}

TEST(ChecksPage, HasEveryCodeOnce)
{
    QSet<QString> named;
    for (const CheckExample &example : examples()) {
        EXPECT_FALSE(named.contains(example.code)) << example.code.toStdString();
        named.insert(example.code);
    }
    QSet<QString> known;
    for (int code = 0; code < Checking::CodeCount; ++code)
        known.insert(QLatin1String(Checking::traitsOf(static_cast<Checking::Code>(code)).name));
    EXPECT_EQ(named, known);
}

TEST(ChecksPage, TellsWhatTheCheckSays)
{
    const OrvTest::MessageCapture capture;
    for (const CheckExample &example : examples()) {
        if (example.files.empty())
            continue;
        SCOPED_TRACE(example.code.toStdString());
        ModelFindings findings;
        EXPECT_EQ(checked(example, findings).toStdString(), example.findings.toStdString());
        EXPECT_TRUE(example.findings.contains(QLatin1Char('[') + example.code + QLatin1Char(']')));
        for (const Finding &finding : findings.findings) {
            EXPECT_NE(finding.message, QString());
            EXPECT_NE(finding.consequence, QString());
            EXPECT_NE(finding.remedy, QString());
        }
    }
    // A check reports in its own way, and leaves nothing in the log.
    EXPECT_TRUE(capture.messages().empty());
}

/// Every one of the texts would have to be large.
TEST(ChecksPage, LacksAFileForLimitsOnly)
{
    for (const CheckExample &example : examples())
        EXPECT_EQ(example.files.empty(), example.code == QLatin1String("limit-exceeded"))
            << example.code.toStdString();
}

} // namespace
