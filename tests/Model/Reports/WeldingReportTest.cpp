// The message on welding.
#include "Reports/WeldingReport.h"

#include "support/MessageCapture.h"

#include <gmock/gmock.h>

#include <sstream>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;

TEST(WeldingReport, IsOneDebugLine)
{
    struct Row
    {
        const char *name;
        int before;
        int after;
        const char *line;
    };
    const Row rows[] = {
        {"a hundred times the count is more than an int holds", 30000000, 29999999,
         " Vertices Map 30000000 -> 29999999 d        1 ( 99 %) 4"},
        {"the largest count", 2147483647, 2147483647,
         " Vertices Map 2147483647 -> 2147483647 d        0 (100 %) 4"},
        {"no vertices", 0, 0, " Vertices Map        0 ->        0 d        0 (  0 %) 4"},
    };
    const int builder = 0;
    std::ostringstream address;
    address << static_cast<const void *>(&builder);
    for (const Row &row : rows) {
        const MessageCapture messages;
        reportWelding(&builder, row.before, row.after, 4);
        EXPECT_THAT(messages.messages(),
                    ::testing::ElementsAre(Message{QtDebugMsg, address.str() + row.line}))
            << row.name;
    }
}

} // namespace
} // namespace OrvTest
