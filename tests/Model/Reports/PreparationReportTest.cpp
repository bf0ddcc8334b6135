// What is told of a preparation, the same by either of the loader's paths.
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include "OBJPreparing.h"
#include "Reports/CurrentReport.h"

#include <gmock/gmock.h>

#include <QtCore/QBuffer>

#include <memory>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Reason = PreparationReport::Reason;

class PreparationReportTest : public ::testing::TestWithParam<LoaderPath>
{
protected:
    PreparationReport prepare(QByteArray text)
    {
        const MessageCapture silence;
        QBuffer buffer(&text);
        EXPECT_TRUE(buffer.open(QIODevice::ReadOnly));
        const PrepareOptions options;
        OBJPreparation preparation(buffer, _directory.path(QStringLiteral("model.obj")), GetParam(),
                                   {}, options);
        QString error;
        EXPECT_TRUE(preparation.read(error)) << error.toStdString();
        return preparation.prepare()->report;
    }

    TemporaryModel _directory;
};

INSTANTIATE_TEST_SUITE_P(Paths, PreparationReportTest,
                         ::testing::Values(LoaderPath::Lines, LoaderPath::Fast),
                         [](const auto &path) {
                             return path.param == LoaderPath::Lines ? "Lines" : "Fast";
                         });

const QByteArray Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

/// "f" and `count` times the corner 1.
QByteArray faceOf(int count)
{
    return "f" + QByteArray(" 1").repeated(count) + "\n";
}

/// "2: TooFewCorners x 3" for three faces of which the first is number 2.
std::vector<std::string> undrawn(const PreparationReport &report)
{
    const char *const names[] = {"MaterialNotDefined", "TooFewCorners", "NotTriangulated",
                                 "NothingIsDrawn"};
    std::vector<std::string> lines;
    for (const PreparationReport::FacesNotDrawn &faces : report.facesNotDrawn)
        lines.push_back(std::to_string(faces.firstFace) + ": " + names[int(faces.reason)] +
                        (faces.subject.isEmpty() ? "" : " " + faces.subject.toStdString()) + " x " +
                        std::to_string(faces.count));
    return lines;
}

TEST_P(PreparationReportTest, CountsWhatTheFileHolds)
{
    const PreparationReport report = prepare(
        "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvn 0 0 1\nvn 0 0 -1\nvn 1 0 0\nvt 0 0\nvt 1 1\n"
        "f 1/1/1 2/1/1 3/1/1\nf 1/1/1 3/1/1 4/1/1\nf 1 x\n"
        "f 1 2 3 4\nf\n" +
        faceOf(254) + faceOf(255) + faceOf(300) + faceOf(300));
    EXPECT_EQ(report.positions, 4u);
    EXPECT_EQ(report.normals, 3u);
    EXPECT_EQ(report.texCoords, 2u);
    EXPECT_EQ(report.faces, 8u); // without the one that does not parse
    EXPECT_EQ(report.corners, 3u + 3 + 4 + 0 + 254 + 255 + 300 + 300);
    const QMap<quint32, quint64> faces = {{0, 1}, {3, 2}, {4, 1}, {254, 1}, {255, 1}, {300, 2}};
    EXPECT_EQ(report.facesByCornerCount, faces);
    EXPECT_EQ(report.verticesBeforeWelding, 3u + 3 + 4 + 254 + 255 + 300 + 300);
    // Four positions with values and four without; a corner without has zeros.
    EXPECT_EQ(report.vertices, 8u);
    // Two triangles and a quad. Rings of one point have no ear.
    EXPECT_EQ(report.triangles, 1u + 1 + 2);
    EXPECT_EQ(report.facesDrawn, 3u);
    EXPECT_THAT(undrawn(report), ElementsAre("3: TooFewCorners x 1", "4: NotTriangulated x 4"));
}

TEST_P(PreparationReportTest, SaysWhyFacesAreNotDrawn)
{
    _directory.write(QStringLiteral("m.mtl"), "newmtl known\n");
    const PreparationReport report = prepare("v 0 0 0\nv 1 0 0\nv 0 1 0\nmtllib m.mtl\n"
                                             "f 1 2 3\n"                           // 0
                                             "usemtl first\nf 1 2 3\nf 1 2 3\n"    // 1, 2
                                             "usemtl known\nf 1 2\nf 1 2 3\nf 1\n" // 3, 4, 5
                                             "usemtl second\nf 1 2 3\n"            // 6
                                             "usemtl first\nf 1 2 3\n"             // 7
                                             "usemtl known\nf 1 1 1 1 1\nf 2 2 2 2 2 2\n"); // 8, 9
    EXPECT_EQ(report.faces, 10u);
    EXPECT_EQ(report.facesDrawn, 2u);
    EXPECT_THAT(undrawn(report),
                ElementsAre("1: MaterialNotDefined first x 3", "3: TooFewCorners x 2",
                            "6: MaterialNotDefined second x 1", "8: NotTriangulated x 2"));
}

TEST_P(PreparationReportTest, SaysThatNothingIsDrawn)
{
    // The normals have values, but no face has an index into them.
    const PreparationReport report = prepare(Triangle + "vn 0 0 1\n");
    EXPECT_EQ(report.faces, 1u);
    EXPECT_EQ(report.facesDrawn, 0u);
    EXPECT_EQ(report.triangles, 0u);
    EXPECT_THAT(undrawn(report), ElementsAre("0: NothingIsDrawn x 1"));
    EXPECT_THAT(undrawn(prepare("v 0 0 0\n")), IsEmpty());
}

TEST_P(PreparationReportTest, TellsTheTimeByStage)
{
    QByteArray many;
    for (int i = 0; i < 2000; ++i)
        many += Triangle;
    const PreparationReport::Stages stages = prepare(many).stages;
    EXPECT_GT(stages.read, 0);
    EXPECT_GT(stages.weld, 0);
    EXPECT_GT(stages.triangulate, 0);
    EXPECT_GT(stages.normals, 0);
}

TEST(CurrentReport, IsTheInnermost)
{
    EXPECT_EQ(currentReport(), nullptr);
    PreparationReport outer;
    const ScopedReport outerScope(outer);
    {
        PreparationReport inner;
        const ScopedReport innerScope(inner);
        EXPECT_EQ(currentReport(), &inner);
    }
    EXPECT_EQ(currentReport(), &outer);
}

} // namespace
