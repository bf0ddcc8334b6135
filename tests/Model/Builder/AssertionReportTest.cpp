#include "Builder/AssertionReport.h"

#include "support/MessageCapture.h"

#include <gmock/gmock.h>

namespace OrvTest {
namespace {

TEST(AssertionReportTest, IsOneCriticalMessage)
{
    struct Row
    {
        const char *name;
        int line;
        const char *expression;
        QString detail;
        const char *message;
    };
    const Row rows[] = {
        {"plain", 807, "newVertexCount <= vertexCount", QStringLiteral("4 <= 3"),
         "[ModelBuilder:807] [ !! ] Assertion 'newVertexCount <= vertexCount' failed: 4 <= 3"},
        {"percent signs of the expression are marked", 1, "i % 3 == 0 && j%s", QString(),
         "[ModelBuilder:1] [ !! ] Assertion 'i \\% 3 == 0 && j\\%s' failed: "},
        {"percent signs of the detail are text", 2, "a", QStringLiteral("100 %s %n"),
         "[ModelBuilder:2] [ !! ] Assertion 'a' failed: 100 %s %n"},
        {"a detail beyond ASCII", 3, "a", QString(QChar(0x00E9)),
         "[ModelBuilder:3] [ !! ] Assertion 'a' failed: \xC3\xA9"},
    };
    for (const Row &row : rows) {
        const MessageCapture messages;
        Halvard::Orv::reportFailedAssertion(row.line, row.expression, row.detail);
        EXPECT_THAT(messages.messages(),
                    ::testing::ElementsAre(Message{QtCriticalMsg, row.message}))
            << row.name;
    }
}

} // namespace
} // namespace OrvTest
