#include "cli/RenderFixture.h"

#include <OrvGL/GPUModel.h>
#include <OrvModel/ModelLoading.h>

#include <QtCore/QLoggingCategory>

#include <memory>
#include <ostream>

QT_BEGIN_NAMESPACE
void PrintTo(const QColor &colour, std::ostream *stream)
{
    *stream << "(" << colour.red() << ", " << colour.green() << ", " << colour.blue() << ", "
            << colour.alpha() << ")";
}
QT_END_NAMESPACE

namespace OrvTest {

using namespace Halvard::Orv;

const char square[] = "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\n"
                      "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";

RenderTest::RenderTest()
{
    setBackground(Qt::black);
    // The loader's statistics are of no interest here.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
}

void RenderTest::setBackground(const QColor &colour)
{
    options.backgroundTop = options.backgroundBottom = colour;
}

QImage RenderTest::draw(const QByteArray &contents)
{
    QString error;
    const std::unique_ptr<GPUModel> model(
        loadModelFromOBJFile(files.write(QStringLiteral("model.obj"), contents), error));
    if (!model) {
        ADD_FAILURE() << error.toStdString();
        return {};
    }
    Render::PictureError failure;
    const QImage picture = Render::renderPicture(*model, size, angles, options, failure, textures);
    EXPECT_EQ(picture.size(), size) << failure.text.toStdString();
    return picture;
}

QColor RenderTest::at(const QImage &picture, double x, double y)
{
    return picture.pixelColor(int(x * picture.width()), int(y * picture.height()));
}

} // namespace OrvTest
