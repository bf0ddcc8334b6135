// A model, its library and its texture out of the program's own resources.
#include "support/GLTest.h"
#include "support/LoadedOBJ.h"
#include "support/QtPrinting.h"

#include <OrvModel/TextureLoading.h>

#include <gmock/gmock.h>

#include <QtCore/QFile>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

/// What stands before the names of the files in either place.
const QString Resources = QStringLiteral(":/models");
const QString Samples = QStringLiteral(ORV_SAMPLES_DIR);

using ResourceModel = GLTest;

TEST_F(ResourceModel, IsTheModelOfTheFile)
{
    const LoadedOBJ resource(Resources + QStringLiteral("/textured_cube.obj"));
    const LoadedOBJ file(Samples + QStringLiteral("/textured_cube.obj"));
    ASSERT_FALSE(resource.isEmpty()) << resource.errorMessage().toStdString();
    EXPECT_EQ(resource.errorMessage(), UploadedModel::untouchedError());
    EXPECT_THAT(resource.warnings(), IsEmpty());
    EXPECT_EQ(resource.vertexCount(), 24u); // six sides of four
    EXPECT_THAT(resource.indices(), ElementsAreArray(file.indices()));
    for (const char *attribute : {"va_Vertex", "va_Normal", "va_TexCoord"}) {
        EXPECT_THAT(resource.values(attribute), Not(IsEmpty())) << attribute;
        EXPECT_THAT(resource.values(attribute), ElementsAreArray(file.values(attribute)));
    }
}

TEST_F(ResourceModel, HasTheMaterialsOfItsLibrary)
{
    const LoadedOBJ resource(Resources + QStringLiteral("/textured_cube.obj"));
    const Drawn &sides = resource.drawnWith("sides");
    EXPECT_EQ(sides.record.member("Ns").floats(), std::vector<float>{30.0f});
    EXPECT_EQ(sides.record.member("map_Kd").path, Resources + QStringLiteral("/textured_cube.png"));
}

TEST_F(ResourceModel, HasTheTextureOfItsMaterial)
{
    static Texture *texture = nullptr; // it lives as long as the process
    texture = LoadTexture(Resources + QStringLiteral("/textured_cube.png"));
    EXPECT_TRUE(texture);
    EXPECT_FALSE(LoadTexture(Resources + QStringLiteral("/none.png")));
}

TEST_F(ResourceModel, ThatIsMissingIsAnError)
{
    const QString name = Resources + QStringLiteral("/none.obj");
    const LoadedOBJ loaded(name);
    EXPECT_FALSE(loaded.isModel());
    EXPECT_EQ(loaded.errorMessage(), QStringLiteral("Failed to load OBJ file '%1'").arg(name));
}

TEST_F(ResourceModel, ADirectoryOfResourcesIsNoModel)
{
    ASSERT_TRUE(QFile::exists(Resources));
    const LoadedOBJ loaded(Resources);
    EXPECT_FALSE(loaded.isModel());
    EXPECT_EQ(loaded.errorMessage(), QStringLiteral("Failed to load OBJ file '%1'").arg(Resources));
}

} // namespace
