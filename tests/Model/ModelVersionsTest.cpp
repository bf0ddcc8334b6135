#include "support/QtPrinting.h"

#include <OrvModel/ModelVersions.h>

#include <gtest/gtest.h>

namespace OrvTest {
namespace {

template <typename Versions>
void expectTheFixedTexts()
{
    EXPECT_EQ(Versions::getVersion(), QStringLiteral("1.0.0"));
    EXPECT_EQ(Versions::getMd5Sum(), QStringLiteral("1"));
    EXPECT_EQ(Versions::getGitHash().length(), 0);
    EXPECT_FALSE(Versions::getGitHash().isNull());
}

TEST(ModelVersionsTest, LibraryVersion)
{
    expectTheFixedTexts<Halvard::Orv::ModelVersions>();
}

TEST(ModelVersionsTest, ExportVersionAnswersTheSame)
{
    expectTheFixedTexts<Halvard::Orv::ModelExportVersions>();
}

} // namespace
} // namespace OrvTest
