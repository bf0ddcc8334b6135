// What tools are told of a load, by either of the loader's roads.
#include "support/GLTest.h"
#include "support/MessageCapture.h"
#include "support/TemporaryModel.h"

#include "LoaderPaths.h"
#include "Reports/LoadReport.h"

#include <OrvGL/GPUModel.h>

#include <gmock/gmock.h>

#include <memory>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

class LoadReportTest : public GLTest, public ::testing::WithParamInterface<LoaderPath>
{
protected:
    void load(const QByteArray &text)
    {
        QString error;
        const std::unique_ptr<GPUModel> model(loadModelByPath(
            _directory.write(QStringLiteral("model.obj"), text), error, GetParam()));
        EXPECT_TRUE(model) << error.toStdString();
    }

private:
    const MessageCapture _silence;
    TemporaryModel _directory;
};

INSTANTIATE_TEST_SUITE_P(Roads, LoadReportTest,
                         ::testing::Values(LoaderPath::Lines, LoaderPath::Fast),
                         [](const auto &road) {
                             return road.param == LoaderPath::Lines ? "lines" : "bytes";
                         });

const QByteArray Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

/// "f" and `count` times the corner 1.
QByteArray faceOf(int count)
{
    return "f" + QByteArray(" 1").repeated(count) + "\n";
}

TEST_P(LoadReportTest, countsWhatTheFileHolds)
{
    LoadReport report;
    {
        const ScopedLoadReport scope(report);
        load("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvn 0 0 1\nvn 0 0 -1\nvn 1 0 0\nvt 0 0\nvt 1 1\n"
             "f 1/1/1 2/1/1 3/1/1\nf 1/1/1 3/1/1 4/1/1\nf 1 x\n"
             "f 1 2 3 4\nf\n" +
             faceOf(254) + faceOf(255) + faceOf(300) + faceOf(300));
    }
    EXPECT_EQ(report.positions, 4u);
    EXPECT_EQ(report.normals, 3u);
    EXPECT_EQ(report.texCoords, 2u);
    EXPECT_EQ(report.faces, 8u); // without the one that does not parse
    EXPECT_EQ(report.corners, 3u + 3 + 4 + 0 + 254 + 255 + 300 + 300);
    const QMap<quint32, quint64> faces = {{0, 1}, {3, 2}, {4, 1}, {254, 1}, {255, 1}, {300, 2}};
    EXPECT_EQ(report.facesByCornerCount, faces);
    EXPECT_EQ(report.gpuVerticesBeforeWelding, 3 + 3 + 4 + 254 + 255 + 300 + 300);
    // Four positions with values and four without; a corner without has zeros.
    EXPECT_EQ(report.gpuVertices, 8);
}

TEST_P(LoadReportTest, addsUpTheTimeOfAllLoads)
{
    // Some hundred times as much to read as in the second load.
    QByteArray many;
    for (int i = 0; i < 2000; ++i)
        many += Triangle;
    LoadReport report;
    const ScopedLoadReport scope(report);
    load(many);
    const LoadReport::Stages first = report.stages;
    load(Triangle);
    EXPECT_GT(first.read, 0);
    EXPECT_GT(report.stages.read, first.read);
    EXPECT_GT(first.weld, 0);
    EXPECT_GT(report.stages.weld, first.weld);
    EXPECT_GT(first.triangulate, 0);
    EXPECT_GT(report.stages.triangulate, first.triangulate);
    EXPECT_GT(first.normals, 0);
    EXPECT_GT(report.stages.normals, first.normals);
    EXPECT_GT(first.gl, 0);
    EXPECT_GT(report.stages.gl, first.gl);
}

TEST_P(LoadReportTest, goesToTheInnermostReport)
{
    LoadReport outer;
    LoadReport inner;
    {
        const ScopedLoadReport outerScope(outer);
        {
            const ScopedLoadReport innerScope(inner);
            load(Triangle);
            load(Triangle);
        }
        load(Triangle);
    }
    load(Triangle); // nobody hears of this one
    EXPECT_EQ(outer.gpuVertices, 3);
    EXPECT_EQ(inner.gpuVertices, 3);
    EXPECT_GT(outer.stages.read, 0);
    EXPECT_GT(inner.stages.read, 0);
}

} // namespace
