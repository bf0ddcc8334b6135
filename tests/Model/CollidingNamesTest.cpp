// Names of a file that collide in every hash table of Qt: loading takes as long as with any
// other names.
#include "support/CollidingNames.h"

#include "support/BothPaths.h"
#include "support/GLTest.h"
#include "support/NameTimes.h"
#include "support/TemporaryModel.h"

#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>

#include <gmock/gmock.h>

#include <QtCore/QHash>

#include <set>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAreArray;

namespace {

constexpr int NameCount = 20'000;

class CollidingNames : public GLTest
{
protected:
    const std::vector<QString> names = collidingNames(NameCount);
    TemporaryModel files;

    QString writeLibrary(const std::vector<QString> &materials) const
    {
        QByteArray text;
        for (const QString &name : materials)
            text += "newmtl " + name.toLatin1() + '\n';
        return files.write(QStringLiteral("m.mtl"), text);
    }

    /// A model in which each material has a face, the last one first.
    QString writeModel(const std::vector<QString> &materials) const
    {
        writeLibrary(materials);
        QByteArray text = "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\n";
        for (auto name = materials.rbegin(); name != materials.rend(); ++name)
            text += "usemtl " + name->toLatin1() + "\nf 1 2 3\n";
        return files.write(QStringLiteral("m.obj"), text);
    }
};

TEST_F(CollidingNames, CollideUnderEverySeed)
{
    EXPECT_EQ(std::set<QString>(names.begin(), names.end()).size(), names.size());
    for (const unsigned seed : {0u, 1u, 0x12345678u, 0xffffffffu}) {
        std::set<unsigned> hashes;
        for (const QString &name : names)
            hashes.insert(qHash(name, seed));
        EXPECT_EQ(hashes.size(), 1u) << seed;
    }
}

TEST_F(CollidingNames, OfMaterialsInALibraryCostNothing)
{
    expectNoLonger(names, [&](const std::vector<QString> &materials) {
        ModelBuilder builder({}, 0);
        ASSERT_TRUE(loadMaterialsFromMTLFile(writeLibrary(materials), builder));
        for (int i = 0; i < NameCount; ++i)
            ASSERT_EQ(builder.materialGroupId(materials[std::size_t(i)]), i);
    });
}

/// Groups are in the order of their definition, which is not that of their faces.
TEST_F(CollidingNames, OfMaterialsInAModelCostNothingOnEitherPath)
{
    for (const LoaderPath path : BothPaths) {
        expectNoLonger(names, [&](const std::vector<QString> &materials) {
            const UploadedModel model = loadByPath(writeModel(materials), path);
            ASSERT_EQ(model.bundles.size(), 1u);
            EXPECT_TRUE(model.bundles[0].materialNames() == materials);
        });
    }
}

} // namespace
