// What the renderer reads from a record.
#include <OrvCore/InstanceData.h>
#include <render/Material.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using namespace Halvard::Orv::Render;
using Halvard::Orv::InstanceData;

/// Of a plan that nobody registers: members are read by name.
InstanceData record()
{
    return InstanceData(QStringLiteral("No such plan"));
}

void set(InstanceData &data, const char *member, const std::vector<float> &values)
{
    data.set(QLatin1String(member), values.data(), values.size() * sizeof(float));
}

TEST(MaterialTest, AnEmptyRecordGivesTheDefaults)
{
    const Material material = materialFromRecord(record());
    EXPECT_EQ(material.diffuse, QVector3D(0.8f, 0.8f, 0.8f));
    EXPECT_EQ(material.specular, QVector3D(0, 0, 0));
    EXPECT_EQ(material.opacity, 1);
    EXPECT_TRUE(material.isOpaque());
    EXPECT_TRUE(material.diffuseMap.path.isNull());
    EXPECT_EQ(material.diffuseMap.texture, nullptr);
}

TEST(MaterialTest, ValuesAreReadByName)
{
    InstanceData data = record();
    set(data, "Kd", {0.1f, 0.2f, 0.3f});
    set(data, "Ks", {0.4f, 0.5f, 0.6f});
    set(data, "Ns", {77});
    set(data, "d", {0.25f});
    data.setTexture(QStringLiteral("map_Kd"), QStringLiteral("/kd.png"));
    data.setTexture(QStringLiteral("map_Ks"), QStringLiteral("/ks.png"));
    const Material material = materialFromRecord(data);
    EXPECT_EQ(material.diffuse, QVector3D(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(material.specular, QVector3D(0.4f, 0.5f, 0.6f));
    EXPECT_EQ(material.shininess, 77);
    EXPECT_EQ(material.opacity, 0.25f);
    EXPECT_FALSE(material.isOpaque());
    EXPECT_EQ(material.diffuseMap.path, QStringLiteral("/kd.png"));
    EXPECT_EQ(material.specularMap.path, QStringLiteral("/ks.png"));
}

TEST(MaterialTest, ValuesAreBroughtIntoRange)
{
    InstanceData data = record();
    set(data, "Kd", {-1, 0.5f, 7});
    set(data, "Ks", {2, -2, 0});
    set(data, "Ns", {1e9f});
    set(data, "d", {-3});
    const Material material = materialFromRecord(data);
    EXPECT_EQ(material.diffuse, QVector3D(0, 0.5f, 1));
    EXPECT_EQ(material.specular, QVector3D(1, 0, 0));
    EXPECT_EQ(material.shininess, 1000);
    EXPECT_EQ(material.opacity, 0);

    set(data, "Ns", {0});
    set(data, "d", {1.5f});
    EXPECT_EQ(materialFromRecord(data).shininess, 1);
    EXPECT_TRUE(materialFromRecord(data).isOpaque());
}

TEST(MaterialTest, WhatIsNoValueKeepsTheDefault)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Material defaults;
    InstanceData data = record();
    set(data, "Kd", {nan, 0, 0});
    set(data, "Ks", {0, infinity, 0});
    set(data, "Ns", {nan});
    set(data, "d", {1, 1}); // two numbers
    const Material material = materialFromRecord(data);
    EXPECT_EQ(material.diffuse, defaults.diffuse);
    EXPECT_EQ(material.specular, defaults.specular);
    EXPECT_EQ(material.shininess, defaults.shininess);
    EXPECT_EQ(material.opacity, defaults.opacity);
}

TEST(MaterialTest, ATextureWithoutAColourIsShownAsItIs)
{
    InstanceData data = record();
    data.setTexture(QStringLiteral("map_Kd"), QStringLiteral("/kd.png"));
    EXPECT_EQ(materialFromRecord(data).diffuse, QVector3D(1, 1, 1));
}

} // namespace
