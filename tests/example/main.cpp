#include <OrvGL/GPUModel.h>
#include <OrvGL/HeadlessContext.h>
#include <OrvModel/ModelLoading.h>
#include <QtCore/QtDebug>

using namespace Halvard::Orv;

int main(int, char **arguments)
{
    const auto context = HeadlessContext::create(); // or the context of your window
    if (!context || !context->makeCurrent())
        return 2;
    QString error;
    const std::unique_ptr<GPUModel> model(
        loadModelFromOBJFile(QString::fromLocal8Bit(arguments[1]), error));
    if (!model)
        qFatal("%s", qPrintable(error));
    qInfo("%d bundle(s) to draw", model->bundleCount()); // each frame: model->draw(program);
}
