// Numbering of rows against a map.
#include "Welding/RowWelding.h"

#include "support/RandomRings.h"

#include "Welding/RowSlots.h"

#include <gmock/gmock.h>

#include <map>
#include <set>
#include <string>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr std::uint32_t Seed = 20240307;

using Columns = std::vector<std::string>;

/// Welds columns of `widths` bytes a row and compares with a map of whole rows.
/// Returns the number of distinct rows.
int expectPlainNumbers(const Columns &columns, const std::vector<std::size_t> &widths, int rowCount)
{
    QVector<RowColumn> table;
    for (std::size_t c = 0; c < columns.size(); ++c)
        table.append({columns[c].data(), widths[c]});
    QVector<int> oldToNew = {99};
    QVector<int> newToOld = {99, 99};
    weldRows(table, rowCount, oldToNew, newToOld);

    std::map<std::string, int> known;
    std::vector<int> expectedNumbers;
    std::vector<int> expectedRows;
    for (int row = 0; row < rowCount; ++row) {
        std::string bytes;
        for (std::size_t c = 0; c < columns.size(); ++c)
            bytes += columns[c].substr(static_cast<std::size_t>(row) * widths[c], widths[c]);
        const auto [found, isNew] = known.emplace(bytes, static_cast<int>(known.size()));
        expectedNumbers.push_back(found->second);
        if (isNew)
            expectedRows.push_back(row);
    }
    EXPECT_THAT(oldToNew, testing::ElementsAreArray(expectedNumbers));
    EXPECT_THAT(newToOld, testing::ElementsAreArray(expectedRows));
    return newToOld.size();
}

std::string randomBytes(Dice &dice, std::size_t count, int differentBytes)
{
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i)
        bytes.push_back(static_cast<char>(dice.below(differentBytes)));
    return bytes;
}

TEST(RowWeldingTest, TheExampleOfTheHeader)
{
    const std::string rows = "ABCCBD";
    QVector<int> oldToNew;
    QVector<int> newToOld;
    weldRows({{rows.data(), 1}}, 6, oldToNew, newToOld);
    EXPECT_THAT(oldToNew, testing::ElementsAre(0, 1, 2, 2, 1, 3));
    EXPECT_THAT(newToOld, testing::ElementsAre(0, 1, 2, 5));
}

TEST(RowWeldingTest, NoRowsNoColumnsNoBytes)
{
    expectPlainNumbers({""}, {4}, 0);
    expectPlainNumbers({}, {}, 3);
    expectPlainNumbers({"", ""}, {0, 0}, 5);
}

TEST(RowWeldingTest, RandomTablesOfEveryWidth)
{
    RecordProperty("seed", static_cast<int>(Seed));
    Dice dice(Seed);
    for (std::size_t width = 1; width <= 40; ++width) {
        for (const int rowCount : {1, 2, 31, 32, 33, 64, 500}) {
            const std::vector<std::size_t> widths = {width,
                                                     static_cast<std::size_t>(dice.below(10)), 3};
            Columns columns;
            for (const std::size_t bytes : widths)
                columns.push_back(randomBytes(dice, bytes * static_cast<std::size_t>(rowCount), 1));
            // Few rows differ from the first, each in one byte somewhere.
            for (int change = 0; change < rowCount / 2; ++change) {
                std::string &column = columns[static_cast<std::size_t>(dice.below(3))];
                if (!column.empty())
                    column[static_cast<std::size_t>(dice.below(static_cast<int>(column.size())))] =
                        static_cast<char>(dice.below(3));
            }
            expectPlainNumbers(columns, widths, rowCount);
        }
    }
}

TEST(RowWeldingTest, ManyRows)
{
    Dice dice(Seed);
    const std::string bytes = randomBytes(dice, 3 * 100000, 40);
    // 40^3 different rows, of which most occur.
    EXPECT_GT(expectPlainNumbers({bytes}, {3}, 100000), 40000);
}

TEST(RowSlotsTest, FindsRowsOfEqualHashesByComparing)
{
    // All rows collide in everything that the table looks at, at its begin and at
    // its end, from where the search goes on at the begin.
    for (const quint64 hash : {quint64(0), ~quint64(0)}) {
        RowSlots table(1000, 100);
        for (quint32 row = 0; row < 100; ++row) {
            const quint32 key = row % 60;
            const quint32 number =
                table.findOrInsert(hash, row, [&](quint32 known) { return known % 60 == key; });
            EXPECT_EQ(number, key);
        }
    }
}

TEST(RowSlotsTest, IsFullAfterAsManyRowsAsAskedFor)
{
    for (const quint32 room : {1u, 2u, 3u, 7u, 8u, 9u, 100u}) {
        RowSlots table(room, room);
        for (quint32 row = 0; row < room; ++row) {
            EXPECT_FALSE(table.isFull());
            table.findOrInsert(quint64(row) << 56, row, [](quint32) { return false; });
        }
        EXPECT_TRUE(table.isFull());
        std::set<quint32> numbers;
        table.forEach([&](quint32 number) { numbers.insert(number); });
        EXPECT_EQ(numbers.size(), room);
        EXPECT_EQ(*numbers.rbegin(), room - 1);
    }
}

TEST(RowSlotsTest, NumbersUpToTheLargest)
{
    constexpr quint32 Limit = 0xffffffffu;
    RowSlots table(Limit, 3);
    const auto never = [](quint32) { return false; };
    EXPECT_EQ(table.findOrInsert(~quint64(0), Limit - 1, never), Limit - 1);
    EXPECT_EQ(table.findOrInsert(~quint64(0), 0, [](quint32 known) { return known == Limit - 1; }),
              Limit - 1);
    EXPECT_EQ(table.findOrInsert(0, 5, never), 5u);
}

} // namespace
