#include "Commands.h"

#include "CommandLine.h"
#include "Confinement.h"
#include "DriverRoom.h"
#include "LoadedModel.h"
#include "Messages.h"
#include "OutputFile.h"
#include "Progress.h"
#include "UndrawnFaces.h"
#include "WriteAll.h"

#include <ImageConversion.h>
#include <OrvGL/GPUModel.h>
#include <render/Picture.h>

#include <QtCore/QBuffer>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtGui/QImage>
#include <QtGui/QImageWriter>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace Halvard::Orv::Cli {

namespace {

using Render::LargestArea;
using Render::LargestSide;

/// Beyond, the file says another size than the picture has.
constexpr int LargestIcon = 256;

struct RenderRequest
{
    QString output; // empty for stdout
    QByteArray format;
    QSize size;
    Render::ViewAngles angles;
    /// Nothing where the model is framed.
    std::optional<Render::ViewPose> pose;
    Render::RenderOptions options;
    /// Nothing where the model decides.
    std::optional<Render::Shading> shading;
    Render::TextureSettings textures;
};

/// "800x600".
std::optional<QSize> parseSize(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^([0-9]{1,5})x([0-9]{1,5})$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return {};
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    const bool isInRange = size.width() >= 1 && size.width() <= LargestSide && size.height() >= 1 &&
                           size.height() <= LargestSide &&
                           qint64(size.width()) * size.height() <= LargestArea;
    return isInRange ? std::optional(size) : std::nullopt;
}

std::optional<double> parseAngle(const QString &text, double limit)
{
    bool isNumber = false;
    const double angle = text.toDouble(&isNumber);
    // NaN fails the comparison as well.
    return isNumber && std::abs(angle) <= limit ? std::optional(angle) : std::nullopt;
}

/// "1.5,0,-2".
std::optional<Render::Place> parsePlace(const QString &text)
{
    double coordinates[3] = {};
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 3)
        return {};
    for (int i = 0; i < 3; ++i) {
        bool isNumber = false;
        coordinates[i] = parts.at(i).toDouble(&isNumber);
        if (!isNumber || !std::isfinite(coordinates[i]))
            return {};
    }
    return Render::Place{coordinates[0], coordinates[1], coordinates[2]};
}

void addCameraOptions(CommandLine &line)
{
    line.addOption({QStringLiteral("azimuth"),
                    QStringLiteral("The side from which to look, in degrees: 0 is +z, 90 is +x. "
                                   "30 when not given."),
                    QStringLiteral("D"), QStringLiteral("30")});
    line.addOption({QStringLiteral("elevation"),
                    QStringLiteral("The height from which to look, in degrees: -90 is from below, "
                                   "90 from above. 20 when not given."),
                    QStringLiteral("D"), QStringLiteral("20")});
    line.addOption({QStringLiteral("up"),
                    QStringLiteral("The axis of the model that points up: x, y or z. y when not "
                                   "given."),
                    QStringLiteral("AXIS"), QStringLiteral("y")});
    line.addOption({QStringLiteral("target"),
                    QStringLiteral("The point of the model to look at, in the middle of the "
                                   "picture; with --distance. The whole model when not given."),
                    QStringLiteral("X,Y,Z")});
    line.addOption({QStringLiteral("distance"),
                    QStringLiteral("From how far to look at the target, in the model's units."),
                    QStringLiteral("D")});
}

void addOptions(CommandLine &line)
{
    line.addOption({{QStringLiteral("o"), QStringLiteral("output")},
                    QStringLiteral("The image file to write; its suffix says the format. '-' "
                                   "is stdout."),
                    QStringLiteral("FILE")});
    line.addOption({QStringLiteral("size"),
                    QStringLiteral("Width and height in pixels, 800x600 when not given."),
                    QStringLiteral("WxH"), QStringLiteral("800x600")});
    addCameraOptions(line);
    line.addOption({QStringLiteral("background"),
                    QStringLiteral("A plain background: #rrggbb, #aarrggbb, a name such as "
                                   "'white', or 'transparent'; two with a comma between them are "
                                   "its top and its bottom."),
                    QStringLiteral("COLOUR")});
    line.addOption({QStringLiteral("grid"), QStringLiteral("Draw a grid on the ground.")});
    line.addOption(
        {QStringLiteral("axes"), QStringLiteral("Draw the directions of x, y and z in a corner.")});
    line.addOption({QStringLiteral("texture-pixels"),
                    QStringLiteral("Most pixels of all textures together, 536870912 when not "
                                   "given; what goes beyond is drawn without."),
                    QStringLiteral("N")});
    line.addOption(
        {QStringLiteral("wireframe"), QStringLiteral("Draw the edges of the triangles on top.")});
    line.addOption({QStringLiteral("shading"),
                    QStringLiteral("What the surface shows: 'material', 'flat' (each face lit by "
                                   "itself, the default for few faces without normals), "
                                   "'normals', 'uv' (a checker), 'groups' (a colour for each "
                                   "material) or 'backfaces' (in red)."),
                    QStringLiteral("MODE")});
    line.addOption({QStringLiteral("normals"), QStringLiteral("As --shading normals.")});
    line.addOption({QStringLiteral("format"),
                    QStringLiteral("The format of the image, such as 'png', whatever its suffix."),
                    QStringLiteral("F")});
}

/// \return what is wrong with the options; empty when nothing is.
QString readShading(const CommandLine &line, std::optional<Render::Shading> &shading)
{
    const bool showsNormals = line.isSet(QStringLiteral("normals"));
    if (showsNormals)
        shading = Render::Shading::Normals;
    if (!line.isSet(QStringLiteral("shading")))
        return {};
    const QString text = line.value(QStringLiteral("shading"));
    const auto named = Render::shadingNamed(text);
    if (!named)
        return QStringLiteral("Invalid shading '%1': use material, flat, normals, uv, groups or "
                              "backfaces.")
            .arg(text);
    if (showsNormals && *named != Render::Shading::Normals)
        return QStringLiteral("'--normals' and '--shading %1' exclude each other.").arg(text);
    shading = named;
    return {};
}

/// \return what is wrong with the options; empty when nothing is.
QString readCamera(const CommandLine &line, RenderRequest &request)
{
    const QString azimuthText = line.value(QStringLiteral("azimuth"));
    const auto azimuth = parseAngle(azimuthText, 1e6);
    if (!azimuth)
        return QStringLiteral("Invalid azimuth '%1': use a number of degrees.").arg(azimuthText);
    request.angles.azimuth = *azimuth;

    const QString elevationText = line.value(QStringLiteral("elevation"));
    const auto elevation = parseAngle(elevationText, 90);
    if (!elevation)
        return QStringLiteral("Invalid elevation '%1': use a number from -90 to 90.")
            .arg(elevationText);
    request.angles.elevation = *elevation;

    const QString up = line.value(QStringLiteral("up"));
    if (up == QLatin1String("x"))
        request.angles.up = Render::UpAxis::X;
    else if (up == QLatin1String("z"))
        request.angles.up = Render::UpAxis::Z;
    else if (up != QLatin1String("y"))
        return QStringLiteral("Invalid axis '%1': use x, y or z.").arg(up);
    request.options.up = request.angles.up;

    const bool hasTarget = line.isSet(QStringLiteral("target"));
    if (hasTarget != line.isSet(QStringLiteral("distance")))
        return QStringLiteral("'--target' and '--distance' belong together.");
    if (!hasTarget)
        return {};
    const QString targetText = line.value(QStringLiteral("target"));
    const auto target = parsePlace(targetText);
    if (!target)
        return QStringLiteral("Invalid target '%1': use three numbers, X,Y,Z.").arg(targetText);
    const QString distanceText = line.value(QStringLiteral("distance"));
    const double distance = distanceText.toDouble();
    if (!(distance > 0 && std::isfinite(distance)))
        return QStringLiteral("Invalid distance '%1': use a number above 0.").arg(distanceText);
    request.pose = Render::ViewPose{request.angles, *target, distance};
    return {};
}

/// One colour, or two. \return false where one is none.
bool readBackground(const QString &text, Render::RenderOptions &options)
{
    const QStringList colours = text.split(QLatin1Char(','));
    options.backgroundTop = QColor(colours.first());
    options.backgroundBottom = QColor(colours.last());
    return colours.size() <= 2 && options.backgroundTop.isValid() &&
           options.backgroundBottom.isValid();
}

/// \return what is wrong with the options; empty when nothing is.
QString readOptions(const CommandLine &line, RenderRequest &request)
{
    request.output = line.value(QStringLiteral("output"));
    if (request.output.isEmpty())
        return QStringLiteral("No image file is given: use -o FILE.");

    const QString sizeText = line.value(QStringLiteral("size"));
    const auto size = parseSize(sizeText);
    if (!size)
        return QStringLiteral("Invalid size '%1': use WIDTHxHEIGHT, at most %2 each and %3 pixels "
                              "in all.")
            .arg(sizeText)
            .arg(LargestSide)
            .arg(LargestArea);
    request.size = *size;

    const QString wrong = readCamera(line, request);
    if (!wrong.isEmpty())
        return wrong;
    if (line.isSet(QStringLiteral("background")) &&
        !readBackground(line.value(QStringLiteral("background")), request.options))
        return QStringLiteral("Invalid colour '%1': use #rrggbb or a colour's name.")
            .arg(line.value(QStringLiteral("background")));
    if (line.isSet(QStringLiteral("texture-pixels"))) {
        const QString text = line.value(QStringLiteral("texture-pixels"));
        bool isNumber = false;
        request.textures.mostPixels = text.toLongLong(&isNumber);
        if (!isNumber || request.textures.mostPixels < 0)
            return QStringLiteral("Invalid number of pixels '%1'.").arg(text);
    }
    request.textures.objection = Confinement::objection;
    request.options.wireframe = line.isSet(QStringLiteral("wireframe"));
    request.options.grid = line.isSet(QStringLiteral("grid"));
    request.options.axes = line.isSet(QStringLiteral("axes"));
    request.format = line.value(QStringLiteral("format")).toLower().toLatin1();
    if (request.output == QLatin1String("-")) {
        if (request.format.isEmpty())
            return QStringLiteral("The format of an image on stdout is not known: use --format, "
                                  "as in '--format png'.");
        request.output.clear();
    }
    return readShading(line, request.shading);
}

QString shownOutput(const RenderRequest &request)
{
    return request.output.isEmpty() ? QStringLiteral("-") : request.output;
}

/// \return a sentence when the picture could not be written there; empty when it can,
///         as far as can be told beforehand.
QString findFormat(const QString &model, RenderRequest &request)
{
    const bool isNamed = !request.format.isEmpty();
    if (!isNamed)
        request.format = QFileInfo(request.output).suffix().toLower().toLatin1();
    if (!QImageWriter::supportedImageFormats().contains(request.format))
        return isNamed ? QStringLiteral("There is no image format '%1' to write.")
                             .arg(QString::fromLatin1(request.format))
                       : QStringLiteral("Cannot write '%1': its suffix is not that of an image "
                                        "format such as .png.")
                             .arg(request.output);
    if ((request.format == "ico" || request.format == "cur") &&
        std::max(request.size.width(), request.size.height()) > LargestIcon)
        return QStringLiteral("Cannot write '%1': an icon has at most %2 pixels on a side; use "
                              "--size.")
            .arg(shownOutput(request))
            .arg(LargestIcon);
    return request.output.isEmpty() ? QString() : OutputFile::obstacle(request.output, model);
}

bool isOpaque(const Render::RenderOptions &options)
{
    return options.backgroundTop.alpha() == 255 && options.backgroundBottom.alpha() == 255;
}

/// In a format that the writer takes as it is: what writers convert, Qt's threads do, for which it
/// waits without end where none can be started.
QImage convertedFor(const RenderRequest &request, const QImage &picture)
{
    if (request.format == "pgm")
        return convertedOnThisThread(picture, QImage::Format_Grayscale8);
    // Without an alpha channel that says nothing.
    return convertedOnThisThread(picture, isOpaque(request.options) ? QImage::Format_RGB32
                                                                    : QImage::Format_ARGB32);
}

/// The whole file; empty when it cannot be made, `error` then says why.
QByteArray encoded(const QImage &picture, const RenderRequest &request, QString &error)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, request.format);
    if (writer.write(convertedFor(request, picture)))
        return buffer.data();
    error =
        QStringLiteral("Cannot write '%1': %2.").arg(shownOutput(request), writer.errorString());
    return {};
}

ExitStatus write(const QImage &picture, const RenderRequest &request)
{
    QString error;
    const QByteArray bytes = encoded(picture, request, error);
    if (bytes.isEmpty()) {
        printError(error);
        return CannotRun;
    }
    return OutputFile::write(request.output,
                             [&bytes](QIODevice &device) { writeAll(device, bytes); });
}

/// Null when it cannot be drawn; `error` then says why.
QImage draw(const GPUModel &model, const RenderRequest &request, Render::PictureError &error)
{
    if (!request.pose)
        return Render::renderPicture(model, request.size, request.angles, request.options, error,
                                     request.textures);
    QString reason;
    const auto renderer = Render::Renderer::create(&reason);
    if (!renderer) {
        error = {reason, false};
        return {};
    }
    renderer->setModel(&model, request.textures);
    const double aspect = double(request.size.width()) / double(request.size.height());
    const Render::Camera camera =
        Render::cameraAt(*request.pose, renderer->geometry().bounds, aspect);
    return Render::renderPicture(*renderer, request.size, camera, request.options, error);
}

} // namespace

ExitStatus renderCommand(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("render"), QStringLiteral("MODEL -o FILE [options]"),
                     QStringLiteral("Draws the model into an image file: framed, lit, textured and "
                                    "anti-aliased."));
    addOptions(line);
    if (const auto status = line.parse(arguments))
        return *status;
    RenderRequest request;
    const QString wrong = readOptions(line, request);
    if (!wrong.isEmpty())
        return line.wrongUsage(wrong);
    const QString obstacle = findFormat(line.model(), request);
    if (!obstacle.isEmpty()) {
        printError(obstacle);
        return CannotRun;
    }

    LoadedModel loaded;
    if (const ExitStatus status = loaded.load(line.model(), line.threads()); status != Fine)
        return status;
    request.options.shading = request.shading.value_or(Render::shadingFor(loaded.report()));
    tell(undrawnFaces(loaded.report(), line.model()), line.model());
    if (const ExitStatus status = verdictOn(loaded.report(), line.model()); status != Fine)
        return status;
    if (loaded.model().bundleCount() == 0)
        qWarning("There is nothing to draw in '%s'.", qUtf8Printable(line.model()));
    if (!hasRoomForPicture(request.size)) {
        Messages::flush();
        printError(Render::noMemoryFor(request.size).text);
        return OutOfMemory;
    }
    QImage picture;
    Render::PictureError error;
    {
        const Progress progress(QStringLiteral("drawing"));
        picture = draw(loaded.model(), request, error);
    }
    if (picture.isNull()) {
        printError(error.text);
        return error.lacksMemory ? OutOfMemory : CannotRun;
    }
    return write(picture, request);
}

} // namespace Halvard::Orv::Cli
