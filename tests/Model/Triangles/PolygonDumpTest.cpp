#include "support/MessageCapture.h"
#include "support/QtPrinting.h"
#include "support/TemporaryModel.h"

#include <OrvModel/PolygonDump.h>

#include <gmock/gmock.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QVector2D>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Points = std::vector<QVector2D>;

class PolygonDump : public ::testing::Test
{
protected:
    QByteArray polygon(const Points &points)
    {
        DumpAsOBJPolygon(_fileName, static_cast<int>(points.size()), points.data());
        return contents();
    }

    QByteArray triangles(const Points &points, const QVector<int> &triples)
    {
        DumpAsOBJTriangles(_fileName, static_cast<int>(points.size()), points.data(), triples);
        return contents();
    }

    QByteArray contents() const
    {
        QFile file(_fileName);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    TemporaryModel _directory;
    QString _fileName = _directory.path(QStringLiteral("dump.obj"));
    MessageCapture _capture;
};

/// Text, so that a failure shows the lines.
std::string text(const QByteArray &bytes)
{
    return bytes.toStdString();
}

TEST_F(PolygonDump, WritesARingAndItsFace)
{
    EXPECT_EQ(text(polygon({{0, 0}, {1, 0}, {0.5f, 1}})), "v 0 0\n"
                                                          "v 1 0\n"
                                                          "v 0.5 1\n"
                                                          "f  1 2 3\n");
    EXPECT_THAT(_capture.messages(), IsEmpty());
}

TEST_F(PolygonDump, WritesTriangles)
{
    const Points square{{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    EXPECT_EQ(text(triangles(square, {0, 1, 3, 1, 2, 3})), "v 0 0\n"
                                                           "v 1 0\n"
                                                           "v 1 1\n"
                                                           "v 0 1\n"
                                                           "f 1 2 4\n"
                                                           "f 2 3 4\n");
    EXPECT_THAT(_capture.messages(), IsEmpty());
}

TEST_F(PolygonDump, WritesWhatLittleThereIs)
{
    EXPECT_EQ(text(polygon({})), "f \n");
    EXPECT_EQ(text(polygon({{1, 2}})), "v 1 2\nf  1\n");
    EXPECT_EQ(text(triangles({}, {})), "");
    EXPECT_EQ(text(triangles({{1, 2}}, {})), "v 1 2\n");
    EXPECT_EQ(text(triangles({}, {0, 1, 2})), "f 1 2 3\n");
    DumpAsOBJPolygon(_fileName, -3, nullptr);
    EXPECT_EQ(text(contents()), "f \n");
    DumpAsOBJTriangles(_fileName, -3, nullptr, {});
    EXPECT_EQ(text(contents()), "");
}

TEST_F(PolygonDump, LeavesAnIncompleteTriangleOut)
{
    EXPECT_EQ(text(triangles({}, {0, 1, 2, 3})), "f 1 2 3\n");
    EXPECT_EQ(text(triangles({}, {0, 1, 2, 3, 4})), "f 1 2 3\n");
    EXPECT_EQ(text(triangles({}, {0, 1})), "");
}

struct NumberCase
{
    float number;
    const char *text;
};

/// Six significant digits, and an exponent below 1e-4 and from 1e6 on.
const NumberCase NumberCases[] = {
    {0.0f, "0"},
    {-1.0f, "-1"},
    {100000.0f, "100000"},
    {999999.0f, "999999"},
    {1000000.0f, "1e+06"},
    {1234567.0f, "1.23457e+06"},
    {0.1f, "0.1"},
    {1.0f / 3, "0.333333"},
    {2.0f / 3, "0.666667"},
    {12345.678f, "12345.7"},
    {1.5f, "1.5"},
    {0.0001f, "0.0001"},
    {0.00001f, "1e-05"},
    {-0x1p-149f, "-1.4013e-45"},
    {0x1.fffffep127f, "3.40282e+38"},
};

TEST_F(PolygonDump, WritesSixDigits)
{
    for (const NumberCase &row : NumberCases) {
        const std::string expected = std::string("v ") + row.text + " " + row.text + "\n";
        EXPECT_EQ(text(triangles({{row.number, row.number}}, {})), expected);
        EXPECT_EQ(text(polygon({{row.number, row.number}})), expected + "f  1\n");
    }
}

TEST_F(PolygonDump, TruncatesTheFileThatIsThere)
{
    const QByteArray longer(100000, 'x');
    _directory.write(QStringLiteral("dump.obj"), longer);
    EXPECT_EQ(text(polygon({})), "f \n");
    _directory.write(QStringLiteral("dump.obj"), longer);
    EXPECT_EQ(text(triangles({}, {})), "");
}

TEST_F(PolygonDump, WarnsOfAFileThatCannotBeWritten)
{
    const QString nowhere = _directory.path(QStringLiteral("gr\u00fcn/none.obj"));
    for (const QString &fileName : {nowhere, _directory.directory()}) {
        // The name goes through the local encoding; the logger takes it for UTF-8.
        const QString name = QString::fromUtf8(fileName.toLocal8Bit());
        const Message warning{QtWarningMsg, "Couldn't write obj file " + name.toStdString()};
        const QVector2D point(1, 2);
        _capture.clear();
        DumpAsOBJPolygon(fileName, 1, &point);
        EXPECT_THAT(_capture.messages(), ElementsAre(warning));
        _capture.clear();
        DumpAsOBJTriangles(fileName, 1, &point, {0, 0, 0});
        EXPECT_THAT(_capture.messages(), ElementsAre(warning));
    }
    EXPECT_FALSE(QFileInfo::exists(nowhere));
}

} // namespace
