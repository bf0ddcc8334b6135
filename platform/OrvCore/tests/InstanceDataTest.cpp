#include <OrvCore/InstanceData.h>

#include "support/MessageCapture.h"
#include "support/QtPrinting.h"

#include <gmock/gmock.h>

#include <climits>

using namespace Halvard::Orv;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A record never looks into a texture: any address does.
Texture *someTexture()
{
    static int somewhere;
    return reinterpret_cast<Texture *>(&somewhere);
}

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

TEST(InstanceData, WithoutAPlanHasNeitherNameNorMembers)
{
    const InstanceData record;
    EXPECT_TRUE(record.name().isNull());
    EXPECT_THAT(record.members(), IsEmpty());
}

TEST(InstanceData, KeepsTheNameOfAPlanThatNobodyRegistered)
{
    EXPECT_EQ(InstanceData(text("NoSuchPlan")).name(), text("NoSuchPlan"));
}

TEST(InstanceData, CopiesTheBytesAtOnce)
{
    InstanceData record(text("Plan"));
    unsigned char bytes[] = {1, 2, 3};
    record.set(text("member"), bytes, 2);
    bytes[0] = 9;
    EXPECT_EQ(record.value(text("member")), QByteArray("\x01\x02", 2));
}

TEST(InstanceData, AnswersForAnUnknownMemberWithNothing)
{
    const InstanceData record(text("Plan"));
    EXPECT_TRUE(record.value(text("member")).isEmpty());
    EXPECT_TRUE(record.texturePath(text("member")).isNull());
    EXPECT_EQ(record.texture(text("member")), nullptr);
}

TEST(InstanceData, HoldsWhatWasSetLastWhateverItsKind)
{
    const QString member = text("member");
    InstanceData record;

    record.set(member, "ab", 2);
    record.setTexture(member, text("a.png"));
    EXPECT_TRUE(record.value(member).isEmpty());
    EXPECT_EQ(record.texturePath(member), text("a.png"));

    record.setTexture(member, someTexture());
    EXPECT_TRUE(record.texturePath(member).isNull());
    EXPECT_EQ(record.texture(member), someTexture());

    record.set(member, "c", 1);
    EXPECT_EQ(record.texture(member), nullptr);
    EXPECT_EQ(record.value(member), QByteArray("c"));

    EXPECT_THAT(record.members(), ElementsAre(member));
}

TEST(InstanceData, TakesANullTextureForNoTexture)
{
    InstanceData record;
    record.setTexture(text("member"), someTexture());
    record.setTexture(text("member"), nullptr);
    EXPECT_EQ(record.texture(text("member")), nullptr);
    EXPECT_THAT(record.members(), ElementsAre(text("member")));
}

TEST(InstanceData, ListsMembersInTheOrderOfTheirFirstSetting)
{
    InstanceData record;
    record.set(text("c"), "1", 1);
    record.setTexture(text("a"), text("a.png"));
    record.set(text("b"), "2", 1);
    record.setTexture(text("c"), someTexture());
    EXPECT_THAT(record.members(), ElementsAre(text("c"), text("a"), text("b")));
}

TEST(InstanceData, IsAValue)
{
    InstanceData first(text("Plan"));
    first.set(text("member"), "1", 1);
    InstanceData second = first;
    second.set(text("member"), "2", 1);
    second.set(text("other"), "3", 1);
    EXPECT_EQ(first.value(text("member")), QByteArray("1"));
    EXPECT_THAT(first.members(), ElementsAre(text("member")));
    EXPECT_EQ(second.value(text("member")), QByteArray("2"));
    EXPECT_EQ(second.name(), text("Plan"));
}

TEST(InstanceData, MayBeUsedAfterItWasMovedFrom)
{
    InstanceData first(text("Plan"));
    first.set(text("member"), "1", 1);
    InstanceData second(std::move(first));
    first = InstanceData(text("Other"));
    EXPECT_EQ(first.name(), text("Other"));
    EXPECT_EQ(second.value(text("member")), QByteArray("1"));
}

TEST(InstanceData, ClearForgetsTheMembersAndKeepsTheName)
{
    InstanceData record(text("Plan"));
    record.set(text("member"), "1", 1);
    const InstanceData before = record;
    record.clear();
    EXPECT_THAT(record.members(), IsEmpty());
    EXPECT_TRUE(record.value(text("member")).isEmpty());
    EXPECT_EQ(record.name(), text("Plan"));
    EXPECT_THAT(before.members(), ElementsAre(text("member")));
}

TEST(InstanceData, TakesItsOwnBytes)
{
    InstanceData record;
    record.set(text("member"), "abc", 3);
    // Shared with the record, and gone with the bytes it holds there.
    const char *const bytes = record.value(text("member")).constData();
    record.set(text("member"), bytes + 1, 2);
    EXPECT_EQ(record.value(text("member")), QByteArray("bc"));
}

TEST(InstanceData, KeepsAMemberWithoutBytes)
{
    InstanceData record;
    record.set(text("member"), nullptr, 0);
    EXPECT_TRUE(record.value(text("member")).isEmpty());
    EXPECT_THAT(record.members(), ElementsAre(text("member")));
}

TEST(InstanceData, RefusesBytesThatAreNotThere)
{
    const OrvTest::MessageCapture log;
    InstanceData record;
    record.set(text("Kd"), nullptr, 12);
    record.set(text("Ks"), "", static_cast<unsigned long>(INT_MAX) + 1);
    EXPECT_THAT(record.members(), IsEmpty());
    EXPECT_THAT(log.texts(QtWarningMsg),
                ElementsAre("InstanceData::set: no 12 bytes to copy for member \"Kd\"",
                            "InstanceData::set: no 2147483648 bytes to copy for member \"Ks\""));
}

} // namespace
