#include "Picture.h"

#include "OffscreenTarget.h"

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtGui/QImage>

namespace Halvard::Orv::Render {

QImage renderPicture(const GPUModel &model, const QSize &size, const ViewAngles &angles,
                     const RenderOptions &options, QString *error, const TextureSettings &textures)
{
    constexpr int Samples = 4;
    const auto target = OffscreenTarget::create(size, Samples, error);
    const auto renderer = target ? Renderer::create(error) : nullptr;
    if (!renderer)
        return {};

    renderer->setModel(&model, textures);
    const double aspect = double(size.width()) / double(size.height());
    const Camera camera = frameModel(renderer->geometry(), angles, aspect);
    target->bind();
    renderer->draw(camera, options);
    QImage picture = target->read();
    if (picture.isNull() && error)
        *error = QStringLiteral("There is no memory for a picture of %1x%2 pixels.")
                     .arg(size.width())
                     .arg(size.height());
    return picture;
}

} // namespace Halvard::Orv::Render
