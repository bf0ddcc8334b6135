#include <OrvCore/InstanceDataCollection.h>

#include <OrvCore/InstanceDataPlan.h>
#include <OrvCore/InstanceDataRegistry.h>

#include "support/QtPrinting.h"

#include <gmock/gmock.h>

#include <cstring>
#include <utility>
#include <vector>

using namespace Halvard::Orv;

namespace {

using Plan = InstanceDataPlan;
using Members = std::vector<std::pair<Plan::DataType, QString>>;

// Plans stay registered until the process ends: every test has a name of its own.
void registerPlan(const QString &name, const Members &members)
{
    auto *plan = new Plan(name);
    for (const auto &[type, member] : members)
        plan->addMember(type, member);
    InstanceDataRegistry::Instance().registerPlan(plan);
}

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

template <typename Value>
QByteArray bytesOf(std::initializer_list<Value> values)
{
    return QByteArray(reinterpret_cast<const char *>(values.begin()),
                      static_cast<int>(values.size() * sizeof(Value)));
}

void setFloats(InstanceData &record, const QString &member, std::initializer_list<float> values)
{
    record.set(member, values.begin(), values.size() * sizeof(float));
}

TEST(InstanceDataCollection, KeepsNameAndRecords)
{
    InstanceData record(text("Other"));
    const InstanceDataCollection collection(text("collection, kept"), {record, record});
    EXPECT_EQ(collection.name(), text("collection, kept"));
    ASSERT_EQ(collection.records().size(), 2);
    EXPECT_EQ(collection.records()[1].name(), text("Other"));
}

TEST(InstanceDataCollection, PacksOneRecordAfterTheOther)
{
    const QString name = text("collection, array");
    registerPlan(name, {{Plan::Float, text("a")}, {Plan::Vec3, text("b")}});
    InstanceData first(name);
    setFloats(first, text("a"), {1});
    setFloats(first, text("b"), {2, 3, 4});
    InstanceData second(name);
    setFloats(second, text("b"), {6, 7, 8});
    setFloats(second, text("a"), {5});
    // a at 0, b at 16..27, stride 32.
    EXPECT_EQ(InstanceDataCollection(name, {first, second}).pack(),
              bytesOf<float>({1, 0, 0, 0, 2, 3, 4, 0, 5, 0, 0, 0, 6, 7, 8, 0}));
}

TEST(InstanceDataCollection, PacksZerosForMembersThatARecordLacks)
{
    const QString name = text("collection, lacking");
    registerPlan(name, {{Plan::Float, text("a")}, {Plan::Float, text("b")}});
    InstanceData record(name);
    setFloats(record, text("b"), {2});
    EXPECT_EQ(InstanceDataCollection(name, {record, InstanceData()}).pack(),
              bytesOf<float>({0, 2, 0, 0}));
}

TEST(InstanceDataCollection, LeavesOutMembersThatThePlanDoesNotDeclare)
{
    const QString name = text("collection, undeclared");
    registerPlan(name, {{Plan::Float, text("a")}});
    InstanceData record(name);
    setFloats(record, text("Ka"), {9, 9, 9});
    setFloats(record, text("a"), {1});
    EXPECT_EQ(InstanceDataCollection(name, {record}).pack(), bytesOf<float>({1}));
}

TEST(InstanceDataCollection, TakesTheFrontOfALongValueAndFillsUpAShortOne)
{
    const QString name = text("collection, sizes");
    registerPlan(name, {{Plan::Vec2, text("long")}, {Plan::Vec2, text("short")}});
    InstanceData record(name);
    setFloats(record, text("long"), {1, 2, 3, 4, 5});
    setFloats(record, text("short"), {6});
    EXPECT_EQ(InstanceDataCollection(name, {record}).pack(), bytesOf<float>({1, 2, 6, 0}));
}

TEST(InstanceDataCollection, SaysOfATextureWhetherThereIsOne)
{
    const QString name = text("collection, textures");
    registerPlan(name, {{Plan::Texture, text("path")},
                        {Plan::Texture, text("object")},
                        {Plan::Texture, text("empty path")},
                        {Plan::Texture, text("null object")},
                        {Plan::Texture, text("bytes")},
                        {Plan::Texture, text("unset")}});
    int somewhere = 0;
    InstanceData record(name);
    record.setTexture(text("path"), text("a.png"));
    record.setTexture(text("object"), reinterpret_cast<Texture *>(&somewhere));
    record.setTexture(text("empty path"), text(""));
    record.setTexture(text("null object"), nullptr);
    record.set(text("bytes"), "\x07\x07\x07\x07", 4);
    EXPECT_EQ(InstanceDataCollection(name, {record}).pack(), bytesOf<quint32>({1, 1, 0, 0, 0, 0}));
}

TEST(InstanceDataCollection, PacksNoBytesWhereAValueMemberHoldsATexture)
{
    const QString name = text("collection, texture for a value");
    registerPlan(name, {{Plan::Float, text("a")}});
    InstanceData record(name);
    record.setTexture(text("a"), text("a.png"));
    EXPECT_EQ(InstanceDataCollection(name, {record}).pack(), bytesOf<float>({0}));
}

TEST(InstanceDataCollection, FollowsItsOwnNameAndNotThatOfItsRecords)
{
    const QString name = text("collection, own name");
    registerPlan(name, {{Plan::Float, text("a")}});
    InstanceData record(text("another plan"));
    setFloats(record, text("a"), {1});
    EXPECT_EQ(InstanceDataCollection(name, {record}).pack(), bytesOf<float>({1}));
}

TEST(InstanceDataCollection, LooksThePlanUpWhenItPacks)
{
    const QString name = text("collection, later");
    InstanceData record(name);
    setFloats(record, text("a"), {1});
    const InstanceDataCollection collection(name, {record});
    EXPECT_TRUE(collection.pack().isEmpty());
    registerPlan(name, {{Plan::Float, text("a")}});
    EXPECT_EQ(collection.pack(), bytesOf<float>({1}));
}

TEST(InstanceDataCollection, PacksNothingWithoutRecordsOrMembers)
{
    const QString name = text("collection, empty");
    registerPlan(name, {});
    EXPECT_TRUE(InstanceDataCollection(name, {}).pack().isEmpty());
    EXPECT_TRUE(InstanceDataCollection(name, {InstanceData(name)}).pack().isEmpty());
}

} // namespace
