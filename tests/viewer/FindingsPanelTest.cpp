// The panel of findings in the real window.
#include "WindowTest.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtTest/QTest>
#include <QtWidgets/QAction>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTextBrowser>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QTreeView>
#include <QtWidgets/QTreeWidget>

#include <viewer/panels/FindingsModel.h>
#include <viewer/panels/FindingsPanel.h>
#include <viewer/panels/FixReportDialog.h>

namespace {

using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;
using namespace OrvTest;

/// A wall of 40 by 20 in the plane z = 0; a small face that crosses itself around (7, 3, 0), which
/// gives no triangle; a face whose material no library defines, around (-15, -6, 0); and in line 18
/// a number with a comma, which a repair mends.
///
///     (-20, 10) +-----------------------+
///               |            \/         |
///               |            /\         |
///               |  []                   |
///               +-----------------------+ (20, -10)
const char *const Wall = "v -20 -10 0\n"
                         "v 20 -10 0\n"
                         "v 20 10 0\n"
                         "v -20 10 0\n"
                         "v 6 2 0\n"
                         "v 8 4 0\n"
                         "v 8 2 0\n"
                         "v 6 4 0\n"
                         "v 7 3 0\n"
                         "v -16 -7 0\n"
                         "v -14 -7 0\n"
                         "v -14 -5 0\n"
                         "v -16 -5 0\n"
                         "f 1 2 3 4\n"
                         "f 5 6 7 8 9\n"
                         "usemtl plaster\n"
                         "f 10 11 12 13\n"
                         "v 0,5 0 0\n";

class FindingsPanelTest : public WindowTest
{
protected:
    FindingsPanel &panel() { return *window().findChild<FindingsPanel *>(); }
    QTreeView &list() { return *panel().findChild<QTreeView *>(QStringLiteral("findings")); }
    QToolButton &severity(const char *name)
    {
        return *panel().findChild<QToolButton *>(QLatin1String(name));
    }
    QPushButton &fixButton() { return *panel().findChild<QPushButton *>(QStringLiteral("fix")); }
    QString details() { return panel().findChild<QTextBrowser *>()->toPlainText(); }
    QString status()
    {
        auto *const label = panel().findChild<QLabel *>(QStringLiteral("findingsStatus"));
        return label->isVisible() ? label->text() : QString();
    }

    FindingsPanelTest() { window().resize(900, 640); }

    void waitForCheck()
    {
        waitFor([this] { return !panel().isBusy(); }, "the check");
    }

    void check(const QByteArray &model)
    {
        openModel(model);
        waitForCheck();
    }

    /// What a column shows, row by row.
    QStringList listed(int column)
    {
        QStringList texts;
        for (int row = 0; row < list().model()->rowCount(); ++row)
            texts += list().model()->index(row, column).data().toString();
        return texts;
    }

    /// As with the mouse.
    void click(const QString &code)
    {
        const int row = listed(FindingsModel::Code).indexOf(code);
        ASSERT_GE(row, 0) << qPrintable(code) << " is not listed";
        const QModelIndex index = list().model()->index(row, FindingsModel::Message);
        list().scrollTo(index);
        QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, list().visualRect(index).center());
    }

    QPointF seenAt(const QVector3D &point)
    {
        return viewport().camera().seenAt(point).value_or(QPointF(-1e6, -1e6));
    }

    /// The middle of a face is that of the view, and all of the face is seen.
    void expectInTheMiddle(const std::vector<QVector3D> &corners)
    {
        QVector3D sum;
        for (const QVector3D &corner : corners)
            sum += corner;
        const QPointF middle(viewport().width() / 2.0, viewport().height() / 2.0);
        const QPointF seen = seenAt(sum / float(corners.size())) - middle;
        EXPECT_LE(std::hypot(seen.x(), seen.y()), 5) << seen.x() << ", " << seen.y();
        for (const QVector3D &corner : corners)
            EXPECT_TRUE(QRectF(viewport().rect()).contains(seenAt(corner)));
        EXPECT_EQ(viewport().options().marked, corners);
    }

    /// Pixels of the mark's colour around the place where a point is seen.
    bool isMarkedAround(const QVector3D &point)
    {
        const QImage image = seen();
        const QPoint place = (seenAt(point) * image.width() / viewport().width()).toPoint();
        int marked = 0;
        for (int y = -3; y <= 3; ++y)
            for (int x = -3; x <= 3; ++x) {
                const QPoint at = place + QPoint(x, y);
                if (image.rect().contains(at)) {
                    const QColor colour = image.pixelColor(at);
                    marked += colour.saturation() > 120;
                }
            }
        return marked > 10;
    }

    /// Fixes through the button and its dialog.
    void fixInto(const QString &output)
    {
        fixButton().click();
        QFileDialog *dialog = nullptr;
        ASSERT_TRUE(waitFor(
            [&] {
                dialog = panel().findChild<QFileDialog *>();
                return dialog && dialog->isVisible();
            },
            "the dialog"));
        dialog->selectFile(output);
        static_cast<QDialog *>(dialog)->accept();
        waitForCheck();
    }
};

const std::vector<QVector3D> Crossed = {{6, 2, 0}, {8, 4, 0}, {8, 2, 0}, {6, 4, 0}, {7, 3, 0}};
const std::vector<QVector3D> Plaster = {{-16, -7, 0}, {-14, -7, 0}, {-14, -5, 0}, {-16, -5, 0}};

TEST_F(FindingsPanelTest, ListsWhatTheCheckFindsTheWorstFirst)
{
    EXPECT_EQ(status(), QStringLiteral("No model is open."));
    check(Wall);
    ModelFindings expected;
    QString reason;
    ASSERT_EQ(checkModel(viewport().details()->path, expected, reason), CheckStatus::Done);
    std::stable_sort(expected.findings.begin(), expected.findings.end(),
                     [](const Finding &a, const Finding &b) { return a.severity < b.severity; });
    QStringList codes, severities, places, messages;
    for (const Finding &finding : expected.findings) {
        codes += finding.code;
        severities += severityName(finding.severity);
        places += QStringLiteral("model.obj:%1").arg(finding.line);
        messages += finding.message;
    }
    ASSERT_GE(codes.size(), 3);
    EXPECT_EQ(listed(FindingsModel::Code), codes);
    EXPECT_EQ(listed(FindingsModel::Severity), severities);
    EXPECT_EQ(listed(FindingsModel::Place), places);
    EXPECT_EQ(listed(FindingsModel::Message), messages);
    EXPECT_EQ(status(), QString());
}

TEST_F(FindingsPanelTest, AClickFliesToTheFaceAndMarksIt)
{
    check(Wall);
    click(QStringLiteral("material-undefined"));
    expectInTheMiddle(Plaster);
    for (const QVector3D &corner : Plaster)
        EXPECT_TRUE(isMarkedAround(corner));
}

TEST_F(FindingsPanelTest, AFaceWithoutTrianglesIsFlownToAndMarkedToo)
{
    check(Wall);
    click(QStringLiteral("face-not-triangulable"));
    expectInTheMiddle(Crossed);
    for (const QVector3D &corner : Crossed)
        EXPECT_TRUE(isMarkedAround(corner));
    EXPECT_TRUE(isMarkedAround({8, 3, 0})) << "the edge between two corners";
    EXPECT_FALSE(isMarkedAround({9, 3, 0})) << "beside the face";
}

TEST_F(FindingsPanelTest, AFaceOfOnePointIsFlownToAsWell)
{
    check("v 0 0 0\nv 9 0 0\nv 0 9 0\nv 5 5 0\nv 5 5 0\nv 5 5 0\nf 1 2 3\nf 4 5 6\n");
    click(QStringLiteral("corners-coincide"));
    expectInTheMiddle({{5, 5, 0}, {5, 5, 0}, {5, 5, 0}});
}

TEST_F(FindingsPanelTest, AClickOnTheChosenFindingComesBack)
{
    check(Wall);
    click(QStringLiteral("material-undefined"));
    viewport().frameModel();
    click(QStringLiteral("material-undefined"));
    expectInTheMiddle(Plaster);
}

TEST_F(FindingsPanelTest, AFindingWithoutAFaceLeavesTheCameraAndTakesTheMarkAway)
{
    check(Wall);
    click(QStringLiteral("material-undefined"));
    viewport().frameModel();
    click(QStringLiteral("number-decimal-comma"));
    EXPECT_TRUE(viewport().camera().isFramed());
    EXPECT_TRUE(viewport().options().marked.empty());
}

TEST_F(FindingsPanelTest, KeysChooseTheNextAndThePreviousOne)
{
    check(Wall);
    const int last = list().model()->rowCount() - 1;
    const auto chosen = [this] {
        const QModelIndexList rows = list().selectionModel()->selectedRows();
        return rows.isEmpty() ? -1 : rows.first().row();
    };
    QTest::keyClick(&window(), Qt::Key_F8);
    EXPECT_EQ(chosen(), 0);
    QTest::keyClick(&window(), Qt::Key_F8);
    EXPECT_EQ(chosen(), 1);
    QTest::keyClick(&window(), Qt::Key_F8, Qt::ShiftModifier);
    QTest::keyClick(&window(), Qt::Key_F8, Qt::ShiftModifier);
    EXPECT_EQ(chosen(), last);
    QTest::keyClick(&window(), Qt::Key_F8);
    EXPECT_EQ(chosen(), 0);
}

TEST_F(FindingsPanelTest, FiltersBySeverityAndByText)
{
    check(Wall);
    const QStringList all = listed(FindingsModel::Severity);
    const int errors = all.count(QStringLiteral("error"));
    ASSERT_EQ(errors, 2);
    ASSERT_GT(all.size(), errors);
    EXPECT_EQ(severity("errors").text(), QStringLiteral("2 Errors"));
    severity("errors").click();
    EXPECT_EQ(listed(FindingsModel::Severity), all.mid(errors));
    severity("errors").click();
    EXPECT_EQ(listed(FindingsModel::Severity), all);
    severity("warnings").click();
    severity("hints").click();
    EXPECT_EQ(listed(FindingsModel::Severity), all.mid(0, errors));
    severity("errors").click();
    EXPECT_EQ(list().model()->rowCount(), 0);
    for (const char *name : {"errors", "warnings", "hints"})
        severity(name).click();

    auto *const text = panel().findChild<QLineEdit *>();
    QTest::keyClicks(text, QStringLiteral("PLASTER"));
    EXPECT_EQ(listed(FindingsModel::Code), QStringList(QStringLiteral("material-undefined")));
    // Letters are shortcuts elsewhere in the window.
    EXPECT_EQ(text->text(), QStringLiteral("PLASTER"));
}

TEST_F(FindingsPanelTest, AFilterThatHidesTheChosenFindingTakesTheMarkAway)
{
    check(Wall);
    click(QStringLiteral("material-undefined"));
    severity("warnings").click();
    EXPECT_EQ(viewport().options().marked, Plaster) << "still listed";
    severity("errors").click();
    EXPECT_TRUE(viewport().options().marked.empty());
    EXPECT_EQ(details(), QString());
}

TEST_F(FindingsPanelTest, TellsWhatFollowsFromTheChosenOne)
{
    check(Wall);
    click(QStringLiteral("material-undefined"));
    ModelFindings model;
    QString reason;
    ASSERT_EQ(checkModel(viewport().details()->path, model, reason), CheckStatus::Done);
    for (const Finding &finding : model.findings) {
        if (finding.code != QLatin1String("material-undefined"))
            continue;
        const QStringList lines = details().split(QLatin1Char('\n'));
        EXPECT_THAT(lines, testing::ElementsAre(
                               finding.message, finding.consequence, finding.remedy,
                               QStringLiteral("\"Fix and Save As ...\" mends this."),
                               QStringLiteral("%1:16 [material-undefined]").arg(finding.file)));
    }
}

TEST_F(FindingsPanelTest, NamesInTheFileAreNoMarkup)
{
    check("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nusemtl <h1>big</h1>\x1b\nf 1 2 3\n");
    click(QStringLiteral("material-undefined"));
    EXPECT_THAT(details().toStdString(), testing::HasSubstr("<h1>big</h1>\\x1b"));
}

TEST_F(FindingsPanelTest, CopiesFileAndLine)
{
    check(Wall);
    click(QStringLiteral("face-not-triangulable"));
    const QString place = viewport().details()->path + QStringLiteral(":15");
    QTest::keyClick(&list(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), place);
    list().findChild<QAction *>(QStringLiteral("copyFinding"))->trigger();
    EXPECT_THAT(QGuiApplication::clipboard()->text().toStdString(),
                testing::AllOf(testing::StartsWith(place.toStdString() + ": error: "),
                               testing::EndsWith(" [face-not-triangulable]")));
    list().findChild<QAction *>(QStringLiteral("copyPlace"))->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), place);
}

TEST_F(FindingsPanelTest, FindingsInALibraryNameIt)
{
    files.write(QStringLiteral("paint.mtl"), "newmtl paint\nKd 1 0 0\nmap_Kd none.png\n");
    check("mtllib paint.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl paint\nf 1 2 3\n");
    click(QStringLiteral("texture-missing"));
    QTest::keyClick(&list(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(),
              QFileInfo(viewport().details()->path).path() + QStringLiteral("/paint.mtl:3"));
    EXPECT_THAT(listed(FindingsModel::Place), testing::Contains(QStringLiteral("paint.mtl:3")));
}

TEST_F(FindingsPanelTest, FixesIntoAnotherFileAndOpensIt)
{
    check(Wall);
    const QString input = viewport().details()->path;
    const QString output = QFileInfo(input).path() + QStringLiteral("/mended.obj");
    ASSERT_TRUE(fixButton().isEnabled());
    fixInto(output);
    auto *const report = panel().findChild<FixReportDialog *>();
    ASSERT_TRUE(report);
    EXPECT_TRUE(QFileInfo(output).isFile());
    QStringList mended;
    const auto *const changes = report->findChild<QTreeWidget *>();
    for (int i = 0; i < changes->topLevelItemCount(); ++i)
        mended += changes->topLevelItem(i)->text(2);
    EXPECT_THAT(mended, testing::UnorderedElementsAre(QStringLiteral("number-decimal-comma"),
                                                      QStringLiteral("material-undefined")));
    EXPECT_EQ(report->findChild<QLabel *>(QStringLiteral("fixSummary"))->text(),
              QStringLiteral("Written: '%1', '%2'.\n2 things were changed. 1 error and 0 warnings "
                             "are left: those have to be mended where the model was made.")
                  .arg(output, QFileInfo(output).path() + QStringLiteral("/mended.mtl")));
    showsAfter([&] { report->accept(); });
    waitForCheck();
    EXPECT_EQ(viewport().details()->path, output);
    EXPECT_THAT(
        listed(FindingsModel::Code),
        testing::Not(testing::AnyOf(testing::Contains(QStringLiteral("number-decimal-comma")),
                                    testing::Contains(QStringLiteral("material-undefined")))));
    EXPECT_THAT(listed(FindingsModel::Code),
                testing::Contains(QStringLiteral("face-not-triangulable")));
    EXPECT_FALSE(fixButton().isEnabled()) << "nothing is left to mend";
}

TEST_F(FindingsPanelTest, NeverFixesIntoTheModelItself)
{
    check(Wall);
    const QString input = viewport().details()->path;
    panel().fixInto(input);
    waitForCheck();
    const auto *const box = panel().findChild<QMessageBox *>();
    ASSERT_TRUE(box);
    EXPECT_THAT(
        box->text().toStdString(),
        testing::StartsWith(QStringLiteral("'%1' cannot be fixed: ").arg(input).toStdString()));
    QFile file(input);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray(Wall));
}

TEST_F(FindingsPanelTest, AFineModelHasNothingToFix)
{
    check("v 0 0 0\nv 1 0 0\nv 0 1 0\nvn 0 0 1\nf 1//1 2//1 3//1\n");
    EXPECT_EQ(status(), QStringLiteral("There is nothing to say about 'model.obj'."));
    EXPECT_FALSE(fixButton().isEnabled());
    EXPECT_EQ(list().model()->rowCount(), 0);
}

TEST_F(FindingsPanelTest, AModelThatCannotBeShownIsCheckedAllTheSame)
{
    check(Wall);
    const QString broken = files.write(QStringLiteral("lost.obj"),
                                       "v 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl gone\nf 1 2 3\n");
    failsAfter([&] { window().open(broken); });
    waitForCheck();
    EXPECT_EQ(status(), QStringLiteral("About 'lost.obj', which is not shown:"));
    click(QStringLiteral("material-undefined"));
    EXPECT_TRUE(viewport().camera().isFramed()) << "its faces are nowhere in what is shown";
    EXPECT_TRUE(viewport().options().marked.empty());
    EXPECT_TRUE(fixButton().isEnabled());
}

TEST_F(FindingsPanelTest, AMissingModelIsASentence)
{
    const QString missing = files.write(QStringLiteral("gone.obj"), "");
    QFile::remove(missing);
    failsAfter([&] { window().open(missing); });
    waitForCheck();
    EXPECT_EQ(status(), QStringLiteral("'%1' cannot be checked: no such file.").arg(missing));
    EXPECT_EQ(list().model()->rowCount(), 0);
}

TEST_F(FindingsPanelTest, AReloadKeepsTheChosenFindingAndTheCamera)
{
    check(Wall);
    click(QStringLiteral("face-not-triangulable"));
    viewport().frameModel(90, 0);
    files.write(QStringLiteral("model.obj"), QByteArray("# one more line\n") + Wall);
    showsAfter([&] { window().reload(); });
    waitForCheck();
    const QModelIndexList rows = list().selectionModel()->selectedRows(FindingsModel::Code);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows.first().data().toString(), QStringLiteral("face-not-triangulable"));
    EXPECT_EQ(viewport().options().marked, Crossed);
    EXPECT_EQ(listed(FindingsModel::Place).at(rows.first().row()), QStringLiteral("model.obj:16"));
    EXPECT_TRUE(viewport().camera().isFramed()) << "nobody asked to fly";
}

TEST_F(FindingsPanelTest, WaitsWithTheCheckUntilItIsSeen)
{
    auto *const dock = window().findChild<QDockWidget *>(QStringLiteral("findingsDock"));
    dock->hide();
    openModel(Wall);
    QTest::qWait(50);
    EXPECT_TRUE(panel().isBusy());
    EXPECT_EQ(panel().findings().rowCount(), 0);
    dock->show();
    waitForCheck();
    EXPECT_GT(panel().findings().rowCount(), 0);
}

TEST_F(FindingsPanelTest, AWindowThatClosesWaitsForNoCheck)
{
    openModel(Wall);
    EXPECT_TRUE(panel().isBusy());
    startAgain();
    EXPECT_EQ(status(), QStringLiteral("No model is open."));
}

} // namespace
