// docs/checks.md: what orv fix makes of the smallest file for each code.
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include "Check/ChecksPage.h"
#include <OrvCheck/ModelCheck.h>
#include <OrvCheck/ModelRepair.h>
#include <orv/FixReport.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <algorithm>

namespace {

using namespace Halvard::Orv;
using OrvTest::CheckExample;
using OrvTest::ExampleFile;

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
}

/// An example's files in a directory that is the current one as long as the object lives.
class Workplace
{
public:
    explicit Workplace(const CheckExample &example) : _before(QDir::currentPath())
    {
        example.write(_directory.directory());
        QDir::setCurrent(_directory.directory());
    }
    ~Workplace() { QDir::setCurrent(_before); }
    Workplace(const Workplace &) = delete;
    Workplace &operator=(const Workplace &) = delete;

private:
    const OrvTest::TemporaryModel _directory;
    const QString _before;
};

RepairResult repaired(const QString &from, const QString &to)
{
    RepairResult result;
    QString reason;
    EXPECT_EQ(repairModel(from, to, result, reason), RepairStatus::Done) << reason.toStdString();
    return result;
}

bool isFixable(const QString &model, const QString &code)
{
    ModelFindings findings;
    QString reason;
    EXPECT_EQ(checkModel(model, findings, reason), CheckStatus::Done) << reason.toStdString();
    return std::any_of(findings.findings.cbegin(), findings.findings.cend(),
                       [&code](const Finding &finding) {
                           return finding.fixable && (code.isNull() || finding.code == code);
                       });
}

std::vector<CheckExample> examples()
{
    std::vector<CheckExample> shown = OrvTest::readChecksPage(QStringLiteral(ORV_CHECKS_PAGE));
    shown.erase(std::remove_if(shown.begin(), shown.end(),
                               [](const CheckExample &example) { return example.files.empty(); }),
                shown.end());
    return shown;
}

TEST(RepairPage, ShowsWhatIsMadeOfEachFile)
{
    for (const CheckExample &example : examples()) {
        SCOPED_TRACE(example.code.toStdString());
        const Workplace workplace(example);
        const RepairResult result =
            repaired(QStringLiteral("model.obj"), QStringLiteral("fixed.obj"));
        EXPECT_EQ(Cli::changeLines(result, false).toStdString(), example.changes.toStdString());
        for (const ExampleFile &file : example.fixed)
            EXPECT_EQ(contents(file.name).toStdString(), file.contents.toStdString());
        const size_t written = example.fixed.empty() ? 1 : example.fixed.size();
        EXPECT_EQ(static_cast<size_t>(result.written.size()), written);
        if (example.fixed.empty()) {
            EXPECT_EQ(contents(QStringLiteral("fixed.obj")), contents(QStringLiteral("model.obj")));
        }
    }
}

TEST(RepairPage, ShowsItForWhatIsFixable)
{
    for (const CheckExample &example : examples()) {
        SCOPED_TRACE(example.code.toStdString());
        const Workplace workplace(example);
        EXPECT_EQ(!example.fixed.empty(), isFixable(QStringLiteral("model.obj"), example.code));
    }
}

TEST(RepairPage, LeavesNothingFixableAndRests)
{
    for (const CheckExample &example : examples()) {
        SCOPED_TRACE(example.code.toStdString());
        const Workplace workplace(example);
        repaired(QStringLiteral("model.obj"), QStringLiteral("fixed.obj"));
        EXPECT_FALSE(isFixable(QStringLiteral("fixed.obj"), {}));
        const RepairResult again =
            repaired(QStringLiteral("fixed.obj"), QStringLiteral("again.obj"));
        EXPECT_TRUE(again.changes.isEmpty());
        EXPECT_EQ(contents(QStringLiteral("again.obj")), contents(QStringLiteral("fixed.obj")));
    }
}

} // namespace
