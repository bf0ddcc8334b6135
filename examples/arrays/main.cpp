// The area and the volume of a mesh, without OpenGL:  arrays MODEL.obj   or   arrays - <MODEL.obj
#include <OrvModel/ModelPreparing.h>
#include <OrvModel/PreparedModel.h>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtCore/QThreadPool>
#include <QtGui/QVector3D>
#include <cstdio>

using namespace Halvard::Orv;

struct Measures
{
    double area = 0;
    double volume = 0;
};

// Of one command, which is the triangles of one material: a range of the indices, three each.
Measures measure(const PreparedModel &model, const PreparedModel::Command &command)
{
    // Positions are the first attribute. All attributes share the indices.
    const float *const positions = model.attributes().first().values;
    // Far from the origin, differences of large products would take the volume's digits.
    const QVector3D centre = (model.minimum() + model.maximum()) / 2;
    const auto corner = [&](quint32 i) {
        const float *const values = positions + 3 * size_t(model.indices()[i]);
        return QVector3D(values[0], values[1], values[2]) - centre;
    };
    Measures sum;
    for (quint32 i = command.firstIndex; i < command.firstIndex + command.indexCount; i += 3) {
        const QVector3D a = corner(i), b = corner(i + 1), c = corner(i + 2);
        const QVector3D normal = QVector3D::crossProduct(b - a, c - a);
        sum.area += double(normal.length()) / 2;
        sum.volume += double(QVector3D::dotProduct(a, normal)) / 6; // of the tetrahedron, signed
    }
    return sum;
}

int main(int count, char **arguments)
{
    QLoggingCategory::setFilterRules("default.debug=false"); // what welding did, for example
    if (count != 2) {
        std::fprintf(stderr, "Usage: arrays MODEL.obj, or arrays - to read standard input\n");
        return 2;
    }
    // Any QIODevice will do: a file, a pipe, a socket, a buffer. Material libraries are looked for
    // beside a file, and in the current folder for the others.
    QFile input(QFile::decodeName(arguments[1]));
    const bool isOpen = qstrcmp(arguments[1], "-") == 0 ? input.open(stdin, QIODevice::ReadOnly)
                                                        : input.open(QIODevice::ReadOnly);
    if (!isOpen) {
        std::fprintf(stderr, "%s: %s\n", arguments[1], qPrintable(input.errorString()));
        return 1;
    }
    QString error, reason;
    PrepareOptions options;
    options.reason = &reason;
    options.threadPool = QThreadPool::globalInstance(); // all cores; the same result to the bit
    const auto model = prepareModelFromOBJ(input, error, options);
    if (!model) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(error), qPrintable(reason));
        return 1;
    }

    std::printf("%u vertices, %u triangles\n", model->vertexCount(), model->indexCount() / 3);
    Measures all;
    for (const PreparedModel::Command &command : model->commands()) {
        const Measures part = measure(*model, command);
        std::printf("%s: area %.6g\n", qPrintable(command.material), part.area);
        all.area += part.area;
        all.volume += part.volume;
    }
    std::printf("area %.6g\nvolume %.6g, if the surface is closed\n", all.area, all.volume);
}
