#include "RenderCommandLine.h"

#include "CameraControl.h"

#include <render/Renderer.h>

#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>

#include <algorithm>

namespace Halvard::Orv::Viewer {

namespace {

/// As many digits as it takes to read the same number again.
QString exact(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

QString nameOf(Render::UpAxis up)
{
    switch (up) {
    case Render::UpAxis::X:
        return QStringLiteral("x");
    case Render::UpAxis::Y:
        return QStringLiteral("y");
    case Render::UpAxis::Z:
        return QStringLiteral("z");
    }
    return {};
}

/// Names of colours have an alpha only where they need one.
QString nameOf(const QColor &colour)
{
    return colour.name(colour.alpha() == 255 ? QColor::HexRgb : QColor::HexArgb);
}

QStringList backgroundArguments(const Render::RenderOptions &options)
{
    const Render::RenderOptions usual;
    const QColor &top = options.backgroundTop;
    const QColor &bottom = options.backgroundBottom;
    if (top == usual.backgroundTop && bottom == usual.backgroundBottom)
        return {};
    QString text = nameOf(top);
    if (top.alpha() == 0 && bottom.alpha() == 0)
        text = QStringLiteral("transparent");
    else if (bottom != top)
        text += QLatin1Char(',') + nameOf(bottom);
    return {QStringLiteral("--background"), text};
}

/// In a terminal, and as text, the name is what it is.
bool isPrintable(const QString &word)
{
    const auto letters = word.toUcs4();
    return std::all_of(letters.begin(), letters.end(), [](uint c) { return QChar::isPrint(c); });
}

/// Each byte that is no plain letter by its number.
QString quotedBytes(const QByteArray &bytes)
{
    QString text = QStringLiteral("$'");
    for (const char byte : bytes) {
        const bool isPlain = byte >= ' ' && byte <= '~' && byte != '\'' && byte != '\\';
        if (isPlain)
            text += QLatin1Char(byte);
        else // in octal: of as many digits in every shell
            text += QStringLiteral("\\%1").arg(uchar(byte), 3, 8, QLatin1Char('0'));
    }
    return text + QLatin1Char('\'');
}

/// As a shell reads it back.
QString quoted(const QString &word)
{
    // What is pasted is text, and becomes UTF-8 again; the name of a file is bytes.
    const QByteArray bytes = QFile::encodeName(word);
    if (!isPrintable(word) || bytes != word.toUtf8())
        return quotedBytes(bytes);
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_@%+=:,./-]+$"));
    if (plain.match(word).hasMatch())
        return word;
    QString text = word;
    text.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

} // namespace

QStringList renderArguments(const QString &model, const QString &picture, const QSize &size,
                            const CameraControl &camera, const Render::RenderOptions &options)
{
    const Render::ViewPose pose = camera.pose();
    QStringList arguments = {QStringLiteral("render"), model, QStringLiteral("-o"), picture};
    arguments << QStringLiteral("--size")
              << QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
    // With an equals sign: a number may begin as an option does.
    arguments << QStringLiteral("--azimuth=") + exact(pose.angles.azimuth)
              << QStringLiteral("--elevation=") + exact(pose.angles.elevation);
    if (pose.angles.up != Render::UpAxis::Y)
        arguments << QStringLiteral("--up") << nameOf(pose.angles.up);
    if (!camera.isFramed())
        arguments << QStringLiteral("--target=%1,%2,%3")
                         .arg(exact(pose.target.x), exact(pose.target.y), exact(pose.target.z))
                  << QStringLiteral("--distance=") + exact(pose.distance);
    arguments << QStringLiteral("--shading") << Render::shadingName(options.shading);
    if (options.wireframe)
        arguments << QStringLiteral("--wireframe");
    if (options.grid)
        arguments << QStringLiteral("--grid");
    if (options.axes)
        arguments << QStringLiteral("--axes");
    return arguments + backgroundArguments(options);
}

QString renderCommandLine(const QStringList &arguments)
{
    QString line = QStringLiteral("orv");
    for (const QString &argument : arguments)
        line += QLatin1Char(' ') + quoted(argument);
    return line;
}

} // namespace Halvard::Orv::Viewer
