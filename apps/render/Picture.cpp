#include "Picture.h"

#include "OffscreenTarget.h"

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtGui/QImage>

namespace Halvard::Orv::Render {

QString noMemoryFor(const QSize &picture)
{
    return QStringLiteral("There is no memory for a picture of %1x%2 pixels.")
        .arg(picture.width())
        .arg(picture.height());
}

QImage renderPicture(Renderer &renderer, const QSize &size, const Camera &camera,
                     const RenderOptions &options, QString *error)
{
    constexpr int Samples = 4;
    const auto target = OffscreenTarget::create(size, Samples, error);
    if (!target)
        return {};
    target->bind();
    renderer.draw(camera, options);
    QImage picture = target->read();
    if (picture.isNull() && error)
        *error = noMemoryFor(size);
    return picture;
}

QImage renderPicture(const GPUModel &model, const QSize &size, const ViewAngles &angles,
                     const RenderOptions &options, QString *error, const TextureSettings &textures)
{
    const auto renderer = Renderer::create(error);
    if (!renderer)
        return {};
    renderer->setModel(&model, textures);
    const double aspect = double(size.width()) / double(size.height());
    return renderPicture(*renderer, size, frameModel(renderer->geometry(), angles, aspect), options,
                         error);
}

} // namespace Halvard::Orv::Render
