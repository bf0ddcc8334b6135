#include <OrvModel/DefaultMaterial.h>

#include <OrvCore/InstanceData.h>
#include <OrvGL/Texture.h>
#include <OrvGL/TextureManager.h>

#include <QtGui/QColor>

namespace Halvard::Orv {

InstanceData makeDefaultMaterial()
{
    const float ambient[3] = {0.0f, 0.0f, 0.0f};
    const float diffuse[3] = {0.7f, 0.7f, 0.7f};
    const float specular[3] = {1.0f, 1.0f, 1.0f};
    const float shininess = 10.0f;
    const float opacity = 1.0f;

    InstanceData material(QStringLiteral("OBJMaterial"));
    material.set(QStringLiteral("Ka"), ambient, sizeof ambient);
    material.set(QStringLiteral("Kd"), diffuse, sizeof diffuse);
    material.set(QStringLiteral("Ks"), specular, sizeof specular);
    material.set(QStringLiteral("Ns"), &shininess, sizeof shininess);
    material.set(QStringLiteral("d"), &opacity, sizeof opacity);

    Texture *white = TextureManager::Instance().colorTexture(QColor(Qt::white));
    material.setTexture(QStringLiteral("map_Kd"), white);
    material.setTexture(QStringLiteral("map_Ks"), white);
    return material;
}

} // namespace Halvard::Orv
