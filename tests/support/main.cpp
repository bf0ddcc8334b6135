#include <gmock/gmock.h>

#include <QtCore/QLoggingCategory>

/// Debug messages are part of what is tested; a system-wide logging configuration
/// may have turned them off.
int main(int argc, char *argv[])
{
    ::testing::InitGoogleMock(&argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=true"));
    return RUN_ALL_TESTS();
}
