// Where the outputs of a repair go, and what is left where they cannot go there.
#include "support/CollidingNames.h"
#include "support/NameTimes.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <OrvCheck/ModelRepair.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QImage>

#include <algorithm>
#include <csignal>
#include <map>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace Halvard::Orv;
const QByteArray Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
const QByteArray Model = "mtllib p.mtl\n" + Triangle + "usemtl red paint\nf 1 2 3\n";
const QByteArray Library = "newmtl red paint\nmap_Kd wood.png\nmap_Bump tex\\bumps.png\n";
const QByteArray Fixed = Triangle + "usemtl red_paint\nf 1 2 3\n";

class RepairOutput : public ::testing::Test
{
protected:
    void SetUp() override
    {
        _model = _files.write(QStringLiteral("in/model.obj"), Model);
        _files.write(QStringLiteral("in/p.mtl"), Library);
        QImage image(1, 1, QImage::Format_RGB32);
        image.fill(Qt::white);
        ASSERT_TRUE(image.save(_files.path(QStringLiteral("in/wood.png"))));
        ASSERT_TRUE(QDir().mkpath(_files.path(QStringLiteral("out"))));
    }

    RepairStatus repair(const QString &output, const RepairOptions &options = {})
    {
        _reason.clear();
        _result = {};
        return repairModel(_model, _files.path(output), _result, _reason, options);
    }

    QByteArray contents(const QString &name) const
    {
        QFile file(_files.path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }

    /// Names and bytes of all files.
    std::map<QString, QByteArray> files() const
    {
        std::map<QString, QByteArray> all;
        for (const char *folder : {"in", "out"}) {
            const QDir directory(_files.path(QString::fromLatin1(folder)));
            for (const QString &name : directory.entryList(QDir::Files | QDir::Hidden)) {
                const QString path = QString::fromLatin1(folder) + QLatin1Char('/') + name;
                all[path] = contents(path);
            }
        }
        return all;
    }

    /// Expects a repair to fail for a reason, and to leave all files as they are.
    void expectRefusal(const QString &output, const QString &reason)
    {
        const auto before = files();
        EXPECT_EQ(repair(output), RepairStatus::Unwritable);
        EXPECT_EQ(_reason, reason);
        EXPECT_EQ(files(), before);
    }

    QString cannotWrite(const QString &name, const char *reason) const
    {
        return QStringLiteral("cannot write '%1': %2")
            .arg(_files.path(name), QString::fromLatin1(reason));
    }

    OrvTest::TemporaryModel _files;
    QString _model;
    QString _reason;
    RepairResult _result;
};

TEST_F(RepairOutput, NamesTheLibraryAfterTheModelInTheSameFolder)
{
    EXPECT_EQ(repair(QStringLiteral("in/fixed.obj")), RepairStatus::Done);
    EXPECT_EQ(contents(QStringLiteral("in/fixed.obj")), "mtllib fixed.mtl\n" + Fixed);
    EXPECT_EQ(contents(QStringLiteral("in/fixed.mtl")),
              "newmtl red_paint\nmap_Kd wood.png\nmap_Bump tex\\bumps.png\n");
    EXPECT_EQ(_result.written, QStringList({_files.path(QStringLiteral("in/fixed.obj")),
                                            _files.path(QStringLiteral("in/fixed.mtl"))}));
}

TEST_F(RepairOutput, KeepsTheLibrarysNameInAnotherFolderAndLeadsPathsBack)
{
    EXPECT_EQ(repair(QStringLiteral("out/fixed.obj")), RepairStatus::Done);
    EXPECT_EQ(contents(QStringLiteral("out/fixed.obj")), "mtllib p.mtl\n" + Fixed);
    EXPECT_EQ(contents(QStringLiteral("out/p.mtl")),
              "newmtl red_paint\nmap_Kd ../in/wood.png\nmap_Bump ../in/tex/bumps.png\n");
}

TEST_F(RepairOutput, CopiesALibraryWithoutFaultsIntoAnotherFolder)
{
    const QByteArray model = "mtllib lib/p.mtl\n" + Triangle + "usemtl a\nf 1 2 3\n";
    _files.write(QStringLiteral("in/model.obj"), model);
    _files.write(QStringLiteral("in/lib/p.mtl"), "newmtl a\nmap_Kd ../wood.png\nKd 1 1 1");
    EXPECT_EQ(repair(QStringLiteral("out/fixed.obj")), RepairStatus::Done);
    EXPECT_EQ(contents(QStringLiteral("out/fixed.obj")), model);
    EXPECT_EQ(contents(QStringLiteral("out/lib/p.mtl")),
              "newmtl a\nmap_Kd ../../in/wood.png\nKd 1 1 1");
    ASSERT_EQ(_result.changes.size(), 1);
    EXPECT_EQ(_result.changes[0].code, QStringLiteral("library-copied"));
    EXPECT_EQ(_result.changes[0].file, _files.path(QStringLiteral("in/lib/p.mtl")));
}

TEST_F(RepairOutput, TakesAnotherNameWhereTheLibrarysIsTaken)
{
    _files.write(QStringLiteral("out/p.mtl"), "newmtl other\n");
    for (int run = 0; run < 2; ++run) { // its own output it writes over
        EXPECT_EQ(repair(QStringLiteral("out/fixed.obj")), RepairStatus::Done);
        EXPECT_EQ(contents(QStringLiteral("out/fixed.obj")), "mtllib fixed.mtl\n" + Fixed);
        EXPECT_EQ(contents(QStringLiteral("out/p.mtl")), "newmtl other\n");
    }
}

TEST_F(RepairOutput, AddsANumberWhereTheLibrarysNameIsThatOfAnInput)
{
    EXPECT_EQ(repair(QStringLiteral("in/p.obj")), RepairStatus::Done);
    EXPECT_EQ(contents(QStringLiteral("in/p.mtl")), Library);
    EXPECT_EQ(contents(QStringLiteral("in/p.obj")), "mtllib p_2.mtl\n" + Fixed);
}

TEST_F(RepairOutput, AddsANumberWhereAnotherFileHasTheLibrarysName)
{
    _files.write(QStringLiteral("in/fixed.mtl"), "newmtl other\n");
    _files.write(QStringLiteral("in/fixed_2.mtl"), "newmtl another\n");
    for (int run = 0; run < 2; ++run) { // its own output it writes over
        SCOPED_TRACE(run);
        EXPECT_EQ(repair(QStringLiteral("in/fixed.obj")), RepairStatus::Done);
        EXPECT_EQ(contents(QStringLiteral("in/fixed.obj")), "mtllib fixed_3.mtl\n" + Fixed);
        EXPECT_EQ(contents(QStringLiteral("in/fixed.mtl")), "newmtl other\n");
        EXPECT_EQ(contents(QStringLiteral("in/fixed_2.mtl")), "newmtl another\n");
        EXPECT_EQ(files().size(), 7u); // and model.obj, p.mtl, wood.png
        ASSERT_EQ(_result.changes.size(), 3);
        const RepairChange &change = _result.changes[0];
        EXPECT_EQ(change.code, QStringLiteral("library-name-taken"));
        EXPECT_EQ(change.message, QStringLiteral("There is another file \"fixed.mtl\": the library "
                                                 "goes to \"fixed_3.mtl\"."));
    }
}

TEST_F(RepairOutput, DefinesMaterialsInNoFileOfAnother)
{
    _model = _files.write(QStringLiteral("in/bare.obj"), Triangle + "usemtl a\nf 1 2 3\n");
    _files.write(QStringLiteral("in/fixed.mtl"), "newmtl other\n");
    EXPECT_EQ(repair(QStringLiteral("in/fixed.obj")), RepairStatus::Done);
    EXPECT_EQ(contents(QStringLiteral("in/fixed.mtl")), "newmtl other\n");
    EXPECT_EQ(contents(QStringLiteral("in/fixed.obj")),
              Triangle + "mtllib fixed_2.mtl\nusemtl a\nf 1 2 3\n");
}

TEST_F(RepairOutput, ReplacesTheLibraryOfTheModelThatItReplaces)
{
    _files.write(QStringLiteral("in/fixed.obj"), "# older\nmtllib ./fixed.mtl\n");
    _files.write(QStringLiteral("in/fixed.mtl"), "newmtl older\n");
    EXPECT_EQ(repair(QStringLiteral("in/fixed.obj")), RepairStatus::Done);
    EXPECT_EQ(contents(QStringLiteral("in/fixed.obj")), "mtllib fixed.mtl\n" + Fixed);
    EXPECT_EQ(contents(QStringLiteral("in/fixed.mtl")),
              "newmtl red_paint\nmap_Kd wood.png\nmap_Bump tex\\bumps.png\n");
    EXPECT_EQ(_result.changes.size(), 2);
}

TEST_F(RepairOutput, TakesALibraryThatHoldsTheSameAlready)
{
    EXPECT_EQ(repair(QStringLiteral("in/fixed.obj")), RepairStatus::Done);
    ASSERT_TRUE(QFile::remove(_files.path(QStringLiteral("in/fixed.obj"))));
    EXPECT_EQ(repair(QStringLiteral("in/fixed.obj")), RepairStatus::Done);
    EXPECT_EQ(contents(QStringLiteral("in/fixed.obj")), "mtllib fixed.mtl\n" + Fixed);
    EXPECT_EQ(contents(QStringLiteral("in/fixed_2.mtl")), "(none)");
}

TEST_F(RepairOutput, NamesNoLibraryWithABlank)
{
    EXPECT_EQ(repair(QStringLiteral("in/my #1 model.obj")), RepairStatus::Done);
    EXPECT_EQ(contents(QStringLiteral("in/my #1 model.obj")), "mtllib my__1_model.mtl\n" + Fixed);
    EXPECT_NE(contents(QStringLiteral("in/my__1_model.mtl")), "(none)");
}

TEST_F(RepairOutput, SaysAllAndWritesNothingInADryRun)
{
    const auto before = files();
    RepairOptions dry;
    dry.dryRun = true;
    EXPECT_EQ(repair(QStringLiteral("in/fixed.obj"), dry), RepairStatus::Done);
    EXPECT_EQ(files(), before);
    const RepairResult promised = _result;
    EXPECT_EQ(repair(QStringLiteral("in/fixed.obj")), RepairStatus::Done);
    EXPECT_EQ(promised.written, _result.written);
    ASSERT_EQ(promised.changes.size(), 2);
    for (int i = 0; i < promised.changes.size(); ++i)
        EXPECT_EQ(promised.changes[i].message, _result.changes[i].message);
}

TEST_F(RepairOutput, RefusesInputsByWhateverName)
{
    const char reason[] = "it is a file of the input";
    expectRefusal(QStringLiteral("in/model.obj"),
                  cannotWrite(QStringLiteral("in/model.obj"), reason));
    expectRefusal(QStringLiteral("in/../in/model.obj"),
                  cannotWrite(QStringLiteral("in/../in/model.obj"), reason));
    expectRefusal(QStringLiteral("in/p.mtl"), cannotWrite(QStringLiteral("in/p.mtl"), reason));
    const QString symbolic = _files.path(QStringLiteral("out/symbolic.obj"));
    ASSERT_TRUE(QFile::link(_model, symbolic));
    expectRefusal(QStringLiteral("out/symbolic.obj"),
                  cannotWrite(QStringLiteral("out/symbolic.obj"), reason));
    const QString hard = _files.path(QStringLiteral("out/hard.obj"));
    ASSERT_EQ(::link(QFile::encodeName(_model).constData(), QFile::encodeName(hard).constData()),
              0);
    expectRefusal(QStringLiteral("out/hard.obj"),
                  cannotWrite(QStringLiteral("out/hard.obj"), reason));
}

TEST_F(RepairOutput, RefusesTheLibraryOfAModelWithoutFaults)
{
    _model =
        _files.write(QStringLiteral("in/clean.obj"), "mtllib clean.mtl\n" + Triangle + "f 1 2 3\n");
    _files.write(QStringLiteral("in/clean.mtl"), "newmtl a\n");
    expectRefusal(QStringLiteral("in/clean.mtl"),
                  cannotWrite(QStringLiteral("in/clean.mtl"), "it is a file of the input"));
    EXPECT_EQ(repair(QStringLiteral("in/copy.obj")), RepairStatus::Done);
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(contents(QStringLiteral("in/copy.obj")),
                  contents(QStringLiteral("in/clean.obj")));
        EXPECT_EQ(repair(QStringLiteral("in/copy.obj")), RepairStatus::Done);
    }
}

TEST_F(RepairOutput, RefusesWhatIsNoFile)
{
    expectRefusal(QStringLiteral("out"), cannotWrite(QStringLiteral("out"), "it is a directory"));
    expectRefusal(QStringLiteral("gone/fixed.obj"),
                  cannotWrite(QStringLiteral("gone/fixed.obj"), "there is no such directory"));
    const QString pipe = _files.path(QStringLiteral("out/pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), S_IRUSR | S_IWUSR), 0);
    expectRefusal(QStringLiteral("out/pipe"),
                  cannotWrite(QStringLiteral("out/pipe"), "it is no regular file"));
}

TEST_F(RepairOutput, WritesNothingWhereTheLibraryCannotBe)
{
    ASSERT_TRUE(QDir().mkpath(_files.path(QStringLiteral("in/fixed.mtl"))));
    _files.write(QStringLiteral("in/fixed.obj"), "# an older one\n");
    expectRefusal(QStringLiteral("in/fixed.obj"),
                  cannotWrite(QStringLiteral("in/fixed.mtl"), "it is a directory"));
}

/// Writing beyond the limit fails as on a full disk.
TEST_F(RepairOutput, WritesNothingOnAFullDisk)
{
    QByteArray comments;
    for (int i = 0; i < 10000; ++i) // in one block, of which a part can be written
        comments += "# filling\n";
    _files.write(QStringLiteral("in/model.obj"), Model + comments);
    _files.write(QStringLiteral("in/fixed.obj"), "# an older one\n");
    const auto before = files();
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit small{1 << 16, limit.rlim_max};
    const auto handler = ::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const RepairStatus status = repair(QStringLiteral("in/fixed.obj"));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    ::signal(SIGXFSZ, handler);
    EXPECT_EQ(status, RepairStatus::Unwritable);
    EXPECT_EQ(_reason, cannotWrite(QStringLiteral("in/fixed.obj"), "File too large"));
    EXPECT_TRUE(files() == before);
}

/// The libraries of the model that an output replaces are looked at once one of them would be
/// replaced, too. Here it is that of the last line.
TEST_F(RepairOutput, CollidingNamesInTheModelThatIsReplacedCostNothing)
{
    constexpr int NameCount = 20'000;
    OrvTest::expectNoLonger(
        OrvTest::collidingNames(NameCount), [this](const std::vector<QString> &names) {
            QByteArray replaced;
            for (const QString &name : names)
                replaced += "mtllib " + name.toLatin1() + '\n';
            _files.write(QStringLiteral("in/fixed.obj"), replaced + "mtllib fixed.mtl\n");
            _files.write(QStringLiteral("in/fixed.mtl"), "# another\n");
            ASSERT_EQ(repair(QStringLiteral("in/fixed.obj")), RepairStatus::Done);
            EXPECT_EQ(_result.written.size(), 2);
            EXPECT_TRUE(contents(QStringLiteral("in/fixed.obj")).startsWith("mtllib fixed.mtl\n"));
        });
}

TEST_F(RepairOutput, SaysWhyAModelCannotBeRead)
{
    _model = _files.path(QStringLiteral("in/gone.obj"));
    EXPECT_EQ(repair(QStringLiteral("out/fixed.obj")), RepairStatus::Unreadable);
    EXPECT_EQ(_reason, QStringLiteral("no such file"));
    EXPECT_EQ(contents(QStringLiteral("out/fixed.obj")), "(none)");
}

TEST_F(RepairOutput, StopsWhenItIsToldTo)
{
    const auto before = files();
    std::vector<double> fractions;
    RepairOptions counting;
    counting.progress = [&fractions](double fraction) {
        fractions.push_back(fraction);
        return true;
    };
    ASSERT_EQ(repair(QStringLiteral("out/whole.obj"), counting), RepairStatus::Done);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_GE(fractions.front(), 0);
    EXPECT_LE(fractions.back(), 1);
    ASSERT_GE(fractions.size(), 4u);
    QDir(_files.path(QStringLiteral("out"))).removeRecursively();
    QDir().mkpath(_files.path(QStringLiteral("out")));
    for (size_t last = 0; last < fractions.size(); ++last) {
        size_t calls = 0;
        RepairOptions stopping;
        stopping.progress = [&calls, last](double) { return calls++ < last; };
        EXPECT_EQ(repair(QStringLiteral("out/fixed.obj"), stopping), RepairStatus::Stopped);
        EXPECT_EQ(_reason, QString());
        EXPECT_EQ(files(), before);
    }
}

} // namespace
