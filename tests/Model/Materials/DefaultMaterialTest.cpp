#include "support/GLTest.h"
#include "support/MessageCapture.h"
#include "support/QtPrinting.h"

#include <OrvCore/InstanceData.h>
#include <OrvGL/AutoBinder.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>
#include <OrvModel/DefaultMaterial.h>

#include <gmock/gmock.h>

namespace OrvTest {
namespace {

using Halvard::Orv::AutoBinder;
using Halvard::Orv::InstanceData;
using Halvard::Orv::makeDefaultMaterial;
using Halvard::Orv::Texture;

class DefaultMaterialTest : public GLTest
{};

/// Checks everything but the textures: floats by their little-endian bytes.
void expectTheFixedValues(const InstanceData &material)
{
    struct Row
    {
        const char *member;
        const char *bytes;
    };
    const Row rows[] = {
        {"Ka", "000000000000000000000000"},
        {"Kd", "3333333f3333333f3333333f"}, // 0.7f = 0x3f333333
        {"Ks", "0000803f0000803f0000803f"},
        {"Ns", "00002041"},
        {"d", "0000803f"},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(material.value(QLatin1String(row.member)), QByteArray::fromHex(row.bytes))
            << row.member;
    }
    EXPECT_EQ(material.name(), QStringLiteral("OBJMaterial"));
    EXPECT_EQ(material.members(),
              QStringLiteral("Ka Kd Ks Ns d map_Kd map_Ks").split(QLatin1Char(' ')))
        << "in the order set";
}

TEST_F(DefaultMaterialTest, IsLightGreyAndOpaque)
{
    expectTheFixedValues(makeDefaultMaterial());
}

TEST_F(DefaultMaterialTest, HasOneWhiteTextureForBothMaps)
{
    const InstanceData material = makeDefaultMaterial();
    Texture *white = material.texture(QStringLiteral("map_Kd"));
    ASSERT_TRUE(white);
    EXPECT_EQ(material.texture(QStringLiteral("map_Ks")), white);
    EXPECT_TRUE(material.texturePath(QStringLiteral("map_Kd")).isNull());

    const AutoBinder binder(white);
    GLint width = 0;
    GLint height = 0;
    glGetTexLevelParameteriv(white->target(), 0, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(white->target(), 0, GL_TEXTURE_HEIGHT, &height);
    ASSERT_GT(width * height, 0);
    QByteArray texels(4 * width * height, '\0');
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(white->target(), 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    EXPECT_EQ(texels, QByteArray(texels.size(), '\xff'));
}

TEST_F(DefaultMaterialTest, TwoCallsShareTheTexture)
{
    const InstanceData first = makeDefaultMaterial();
    const InstanceData second = makeDefaultMaterial();
    EXPECT_EQ(first.members(), second.members());
    for (const QString &member : first.members()) {
        EXPECT_EQ(first.value(member), second.value(member)) << member.toStdString();
        EXPECT_EQ(first.texture(member), second.texture(member)) << member.toStdString();
    }
}

TEST_F(DefaultMaterialTest, HasNullTexturesWithoutAContext)
{
    const MessageCapture messages;
    const NoCurrentContext noContext;
    const InstanceData material = makeDefaultMaterial();
    expectTheFixedValues(material);
    EXPECT_EQ(material.texture(QStringLiteral("map_Kd")), nullptr);
    EXPECT_EQ(material.texture(QStringLiteral("map_Ks")), nullptr);
    EXPECT_THAT(messages.messages(), ::testing::IsEmpty());
}

} // namespace
} // namespace OrvTest
