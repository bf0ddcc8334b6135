// The panel of statistics in the real window, compared with what the command line says.
#include "WindowTest.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLocale>
#include <QtCore/QProcess>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtTest/QTest>
#include <QtWidgets/QDockWidget>

#include <viewer/panels/StatisticsPanel.h>

namespace {

using namespace Halvard::Orv::Viewer;
using namespace OrvTest;

class StatisticsPanelTest : public WindowTest
{
protected:
    StatisticsPanelTest()
    {
        window().resize(900, 640);
        auto *const dock = window().findChild<QDockWidget *>(QStringLiteral("statisticsDock"));
        dock->show();
        dock->raise();
    }

    StatisticsPanel &panel() { return *window().findChild<StatisticsPanel *>(); }

    /// The row below some headings; null where there is none.
    QTreeWidgetItem *row(const QStringList &path)
    {
        QTreeWidgetItem *item = panel().invisibleRootItem();
        for (const QString &label : path) {
            QTreeWidgetItem *next = nullptr;
            for (int i = 0; i < item->childCount() && !next; ++i)
                next = item->child(i)->text(0) == label ? item->child(i) : nullptr;
            if (!next)
                return nullptr;
            item = next;
        }
        return item;
    }

    QString value(const char *heading, const char *label, const char *below = nullptr)
    {
        QStringList path = {QLatin1String(heading), QLatin1String(label)};
        if (below)
            path += QLatin1String(below);
        const QTreeWidgetItem *const item = row(path);
        return item ? item->text(1) : QStringLiteral("no such row");
    }

    static QByteArray info(const QStringList &arguments)
    {
        QProcess program;
        program.start(QStringLiteral(ORV_PROGRAM), QStringList(QStringLiteral("info")) + arguments);
        EXPECT_TRUE(program.waitForFinished(60000));
        return program.readAllStandardOutput();
    }

    static QString number(const QJsonValue &value)
    {
        return QLocale(QLocale::English).toString(qint64(value.toDouble()));
    }

    /// All that the command line says, but for the times.
    void expectAsInfoSays(const QString &model)
    {
        const QJsonObject all =
            QJsonDocument::fromJson(info({model, QStringLiteral("--json")})).object();
        const QJsonObject file = all[QStringLiteral("file")].toObject();
        const QJsonObject gpu = all[QStringLiteral("gpu")].toObject();
        const QJsonObject bytes = gpu[QStringLiteral("bytes")].toObject();
        ASSERT_FALSE(file.isEmpty());
        const struct
        {
            const char *heading;
            const char *label;
            const char *below;
            QJsonValue expected;
        } rows[] = {
            {"In the file", "bytes", nullptr, file[QStringLiteral("bytes")]},
            {"In the file", "positions", nullptr, file[QStringLiteral("positions")]},
            {"In the file", "normals", nullptr, file[QStringLiteral("normals")]},
            {"In the file", "texture coordinates", nullptr, file[QStringLiteral("texCoords")]},
            {"In the file", "faces", nullptr, file[QStringLiteral("faces")]},
            {"In the file", "corners", nullptr, file[QStringLiteral("corners")]},
            {"On the GPU", "vertices before welding", nullptr,
             gpu[QStringLiteral("verticesBeforeWelding")]},
            {"On the GPU", "vertices after welding", nullptr,
             gpu[QStringLiteral("verticesAfterWelding")]},
            {"On the GPU", "triangles", nullptr, gpu[QStringLiteral("triangles")]},
            {"On the GPU", "draw commands", nullptr, gpu[QStringLiteral("commands")]},
            {"On the GPU", "bytes", nullptr, bytes[QStringLiteral("total")]},
            {"On the GPU", "bytes", "indices", bytes[QStringLiteral("indices")]},
        };
        for (const auto &expected : rows)
            EXPECT_EQ(value(expected.heading, expected.label, expected.below),
                      number(expected.expected))
                << expected.heading << ": " << expected.label;
        const QJsonArray materials = all[QStringLiteral("materials")].toArray();
        ASSERT_EQ(row({QStringLiteral("Materials")})->childCount(), materials.size());
        for (const QJsonValue &material : materials)
            EXPECT_EQ(value("Materials", qPrintable(material[QStringLiteral("name")].toString())),
                      number(material[QStringLiteral("triangles")]));
        const QJsonArray lowest =
            all[QStringLiteral("boundingBox")][QStringLiteral("minimum")].toArray();
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_EQ(value("Bounding box", std::string(1, "xyz"[axis]).c_str()),
                      QString::number(lowest[axis].toDouble()));
        const qint64 lost = qint64(file[QStringLiteral("facesNotDrawn")].toDouble());
        EXPECT_EQ(row({QStringLiteral("In the file"), QStringLiteral("faces")})->text(2),
                  lost == 0 ? QString() : QStringLiteral("%1 not drawn").arg(lost));
    }

    /// The text without its last section, the times.
    static QString withoutTimes(const QString &text)
    {
        return text.left(text.indexOf(QStringLiteral("\nMilliseconds")));
    }
};

TEST_F(StatisticsPanelTest, SaysWhatTheCommandLineSays)
{
    for (const char *name :
         {"lighthouse.obj", "generated_normals.obj", "broken/broken_export.obj"}) {
        SCOPED_TRACE(name);
        const QString model = QStringLiteral(ORV_SAMPLES_DIR "/") + QString::fromLatin1(name);
        open(model);
        expectAsInfoSays(model);
    }
}

TEST_F(StatisticsPanelTest, CopiesTheTextOfTheCommandLine)
{
    const QString model = QStringLiteral(ORV_SAMPLES_DIR "/textured_cube.obj");
    open(model);
    QTest::keyClick(&panel(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(withoutTimes(QGuiApplication::clipboard()->text()),
              withoutTimes(QString::fromUtf8(info({model}))));
}

TEST_F(StatisticsPanelTest, AMissingTextureIsTold)
{
    const QString folder =
        QFileInfo(files.write(QStringLiteral("m.mtl"), "newmtl m\nmap_Kd none.png\n")).path();
    openModel("mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl m\nf 1 2 3\n");
    EXPECT_TRUE(row({QStringLiteral("Materials"), QStringLiteral("m"),
                     QStringLiteral("map_Kd  %1/none.png  (missing)").arg(folder)}));
}

TEST_F(StatisticsPanelTest, AModelOfNothingHasZeros)
{
    openModel("v 0 0 0\n");
    EXPECT_EQ(value("On the GPU", "triangles"), QStringLiteral("0"));
    EXPECT_TRUE(row({QStringLiteral("Materials"), QStringLiteral("none")}));
    EXPECT_TRUE(row({QStringLiteral("Bounding box"), QStringLiteral("empty")}));
}

TEST_F(StatisticsPanelTest, AFailedLoadLeavesThoseOfWhatIsShown)
{
    openModel("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    failsAfter([this] {
        window().open(files.write(QStringLiteral("broken.obj"), "mtllib none.mtl\nf 1 2 3\n"));
    });
    EXPECT_EQ(value("On the GPU", "triangles"), QStringLiteral("1"));
}

TEST_F(StatisticsPanelTest, AFoldedSectionStaysSo)
{
    openModel("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    row({QStringLiteral("On the GPU")})->setExpanded(false);
    showsAfter([this] { window().reload(); });
    EXPECT_FALSE(row({QStringLiteral("On the GPU")})->isExpanded());
    EXPECT_TRUE(row({QStringLiteral("In the file")})->isExpanded());
}

} // namespace
