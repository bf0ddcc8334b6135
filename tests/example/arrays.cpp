#include <OrvModel/ModelPreparing.h>
#include <OrvModel/PreparedModel.h>
#include <QtCore/QtDebug>

using namespace Halvard::Orv;

int main(int, char **arguments)
{
    QString error;
    QString reason;
    PrepareOptions options;
    options.reason = &reason;
    const std::unique_ptr<PreparedModel> model =
        prepareModelFromOBJFile(QString::fromLocal8Bit(arguments[1]), error, options);
    if (!model)
        qFatal("%s: %s", qPrintable(error), qPrintable(reason));
    qInfo("%u vertices", model->vertexCount());
    for (const PreparedModel::Attribute &attribute : model->attributes()) // floats of all vertices
        qInfo("%s: %d floats a vertex", qPrintable(attribute.name), attribute.components);
    for (const PreparedModel::Command &command : model->commands()) // ranges of model->indices()
        qInfo("%s: %u triangles", qPrintable(command.material), command.indexCount / 3);
}
