#include "Picture.h"

#include "OffscreenTarget.h"

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtGui/QImage>

namespace Halvard::Orv::Render {

PictureError noMemoryFor(const QSize &picture)
{
    return {QStringLiteral("There is no memory for a picture of %1x%2 pixels.")
                .arg(picture.width())
                .arg(picture.height()),
            true};
}

QImage renderPicture(Renderer &renderer, const QSize &size, const Camera &camera,
                     const RenderOptions &options, PictureError &error)
{
    constexpr int Samples = 4;
    QString reason;
    const auto target = OffscreenTarget::create(size, Samples, &reason);
    if (!target) {
        error = {reason, false};
        return {};
    }
    target->bind();
    renderer.draw(camera, options);
    QImage picture = target->read();
    if (picture.isNull())
        error = noMemoryFor(size);
    return picture;
}

QImage renderPicture(const GPUModel &model, const QSize &size, const ViewAngles &angles,
                     const RenderOptions &options, PictureError &error,
                     const TextureSettings &textures)
{
    QString reason;
    const auto renderer = Renderer::create(&reason);
    if (!renderer) {
        error = {reason, false};
        return {};
    }
    renderer->setModel(&model, textures);
    const double aspect = double(size.width()) / double(size.height());
    return renderPicture(*renderer, size, frameModel(renderer->geometry(), angles, aspect), options,
                         error);
}

} // namespace Halvard::Orv::Render
