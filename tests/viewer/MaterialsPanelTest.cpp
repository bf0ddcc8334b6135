// The panel of materials in the real window.
#include "WindowTest.h"

#include <QtTest/QTest>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTreeView>

#include <viewer/panels/MaterialIcon.h>
#include <viewer/panels/MaterialsModel.h>
#include <viewer/panels/MaterialsPanel.h>

namespace {

using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;
using namespace OrvTest;

/// Two squares side by side: the left one red, of two triangles; the right one
/// blue, of four, drawn after it.
///
///     +------+------+
///     |  red | blue |
///     +------+------+
const char *const Squares = "mtllib m.mtl\n"
                            "v -2 -1 0\nv 0 -1 0\nv 0 1 0\nv -2 1 0\nv 2 -1 0\nv 2 1 0\nv 1 0 0\n"
                            "usemtl red\nf 1 2 3 4\n"
                            "usemtl blue\nf 2 5 7\nf 5 6 7\nf 6 3 7\nf 3 2 7\n";
const char *const Library = "newmtl red\nKd 1 0 0\n"
                            "newmtl blue\nKd 0 0 1\n"
                            "newmtl unused\nKd 0 1 0\n";

class MaterialsPanelTest : public WindowTest
{
protected:
    MaterialsPanelTest()
    {
        window().resize(900, 640);
        files.write(QStringLiteral("m.mtl"), Library);
    }

    QTreeView &list() { return *window().findChild<QTreeView *>(QStringLiteral("materials")); }
    QDockWidget &dock()
    {
        return *window().findChild<QDockWidget *>(QStringLiteral("materialsDock"));
    }

    QStringList listed(int column)
    {
        QStringList texts;
        for (int row = 0; row < list().model()->rowCount(); ++row)
            texts += list().model()->index(row, column).data().toString();
        return texts;
    }

    /// As with the mouse.
    void click(const QString &name)
    {
        const int row = listed(MaterialsModel::Name).indexOf(name);
        ASSERT_GE(row, 0) << qPrintable(name) << " is not listed";
        const QModelIndex index = list().model()->index(row, MaterialsModel::Triangles);
        QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, list().visualRect(index).center());
    }

    QImage iconOf(const QString &name)
    {
        const int row = listed(MaterialsModel::Name).indexOf(name);
        const QIcon icon = list()
                               .model()
                               ->index(row, MaterialsModel::Name)
                               .data(Qt::DecorationRole)
                               .value<QIcon>();
        return icon.pixmap(MaterialIconSize).toImage();
    }

    QColor pixelAt(const QVector3D &point)
    {
        const QImage image = seen();
        const QPointF place = viewport().camera().seenAt(point).value_or(QPointF());
        return image.pixelColor((place * image.width() / viewport().width()).toPoint());
    }

    void openSquares()
    {
        showPlainly();
        openModel(Squares);
        viewport().frameModel(0, 0);
    }
};

const QVector3D OnRed = {-1.3f, 0.4f, 0};
const QVector3D OnBlue = {0.4f, 0.2f, 0};

TEST_F(MaterialsPanelTest, ListsTheMaterialsThatAreDrawn)
{
    openSquares();
    EXPECT_EQ(listed(MaterialsModel::Name),
              QStringList({QStringLiteral("red"), QStringLiteral("blue")}));
    EXPECT_EQ(listed(MaterialsModel::Triangles),
              QStringList({QStringLiteral("2"), QStringLiteral("4")}));
    EXPECT_EQ(iconOf(QStringLiteral("red")).pixelColor(14, 14), QColor(Qt::red));
    EXPECT_EQ(iconOf(QStringLiteral("blue")).pixelColor(14, 14), QColor(Qt::blue));
    EXPECT_EQ(iconOf(QStringLiteral("blue")).pixelColor(46, 14), QColor(Qt::transparent));
}

TEST_F(MaterialsPanelTest, AClickHasTheFacesStandOutFromTheOthers)
{
    openSquares();
    const QColor red = pixelAt(OnRed);
    const QColor blue = pixelAt(OnBlue);
    ASSERT_GT(red.red(), 2 * red.blue());
    ASSERT_GT(blue.blue(), 2 * blue.red());
    click(QStringLiteral("red"));
    EXPECT_EQ(viewport().options().highlighted, QStringLiteral("red"));
    const QColor paleBlue = pixelAt(OnBlue);
    EXPECT_NE(paleBlue, blue);
    EXPECT_LT(paleBlue.hslSaturation(), blue.hslSaturation() / 2) << "the others become grey";
    const QColor standingOut = pixelAt(OnRed);
    EXPECT_GT(standingOut.hslSaturation(), 2 * paleBlue.hslSaturation());

    click(QStringLiteral("blue"));
    EXPECT_GT(pixelAt(OnBlue).hslSaturation(), 2 * pixelAt(OnRed).hslSaturation());
    click(QStringLiteral("blue"));
    EXPECT_EQ(pixelAt(OnRed), red) << "chosen once more, it is as before";
    EXPECT_EQ(pixelAt(OnBlue), blue);
}

TEST_F(MaterialsPanelTest, KeysChooseAndEscapeEndsIt)
{
    openSquares();
    list().setFocus();
    QTest::keyClick(&list(), Qt::Key_Down);
    QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_EQ(viewport().options().highlighted, QStringLiteral("blue"));
    QTest::keyClick(&list(), Qt::Key_Escape);
    EXPECT_TRUE(viewport().options().highlighted.isNull());
}

TEST_F(MaterialsPanelTest, APanelThatGoesTakesTheHighlightWithIt)
{
    openSquares();
    click(QStringLiteral("red"));
    dock().hide();
    EXPECT_TRUE(viewport().options().highlighted.isNull());
}

TEST_F(MaterialsPanelTest, AReloadKeepsTheChosenMaterial)
{
    openSquares();
    click(QStringLiteral("blue"));
    showsAfter([this] { window().reload(); });
    EXPECT_EQ(viewport().options().highlighted, QStringLiteral("blue"));
    openModel("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    EXPECT_TRUE(viewport().options().highlighted.isNull());
    EXPECT_EQ(listed(MaterialsModel::Name), QStringList(QStringLiteral("<default>")));
}

TEST_F(MaterialsPanelTest, FiltersByNameAndSortsByTriangles)
{
    openSquares();
    click(QStringLiteral("blue"));
    auto *const text = window().findChild<QLineEdit *>(QStringLiteral("materialsText"));
    QTest::keyClicks(text, QStringLiteral("BL"));
    EXPECT_EQ(listed(MaterialsModel::Name), QStringList(QStringLiteral("blue")));
    EXPECT_EQ(viewport().options().highlighted, QStringLiteral("blue"));
    text->clear();
    QTest::keyClicks(text, QStringLiteral("red"));
    EXPECT_TRUE(viewport().options().highlighted.isNull()) << "it is not listed";
    text->clear();
    list().sortByColumn(MaterialsModel::Triangles, Qt::DescendingOrder);
    EXPECT_EQ(listed(MaterialsModel::Name),
              QStringList({QStringLiteral("blue"), QStringLiteral("red")}));
}

TEST_F(MaterialsPanelTest, TexturesAreShownUprightAndMissingOnesCrossed)
{
    // Green above white, as in the file.
    QImage texture(256, 256, QImage::Format_RGB32);
    texture.fill(Qt::white);
    for (int y = 0; y < 128; ++y)
        for (int x = 0; x < 256; ++x)
            texture.setPixelColor(x, y, Qt::green);
    const QString folder =
        QFileInfo(files.write(QStringLiteral("m.mtl"), "newmtl red\nKd 1 0 0\nmap_Kd t.png\n"
                                                       "newmtl blue\nKd 0 0 1\nmap_Kd none.png\n"))
            .path();
    ASSERT_TRUE(texture.save(folder + QStringLiteral("/t.png")));
    openSquares();
    EXPECT_EQ(iconOf(QStringLiteral("red")).pixelColor(46, 5), QColor(Qt::green));
    EXPECT_EQ(iconOf(QStringLiteral("red")).pixelColor(46, 22), QColor(Qt::white));
    const QColor cross = iconOf(QStringLiteral("blue")).pixelColor(46, 14);
    EXPECT_GT(cross.red(), 2 * cross.green()) << "crossed";
    EXPECT_EQ(listed(MaterialsModel::Texture),
              QStringList({QStringLiteral("t.png"), QStringLiteral("none.png (cannot be shown)")}));
}

TEST_F(MaterialsPanelTest, NamesInTheFileAreNoMarkup)
{
    files.write(QStringLiteral("m.mtl"), "newmtl <b>x</b>\nKd 1 0 0\n");
    openModel("mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl <b>x</b>\nf 1 2 3\n");
    const QModelIndex index = list().model()->index(0, MaterialsModel::Name);
    EXPECT_EQ(index.data().toString(), QStringLiteral("<b>x</b>"));
    EXPECT_THAT(index.data(Qt::ToolTipRole).toString().toStdString(),
                testing::HasSubstr("&lt;b&gt;x&lt;/b&gt;"));
    click(QStringLiteral("<b>x</b>"));
    EXPECT_EQ(viewport().options().highlighted, QStringLiteral("<b>x</b>"));
}

TEST_F(MaterialsPanelTest, AFailedLoadLeavesTheListOfWhatIsShown)
{
    openSquares();
    click(QStringLiteral("red"));
    failsAfter([this] {
        window().open(files.write(QStringLiteral("broken.obj"), "mtllib none.mtl\nf 1 2 3\n"));
    });
    EXPECT_EQ(listed(MaterialsModel::Name),
              QStringList({QStringLiteral("red"), QStringLiteral("blue")}));
    EXPECT_EQ(viewport().options().highlighted, QStringLiteral("red"));
}

} // namespace
