#include <gmock/gmock.h>

#include <QtCore/QLoggingCategory>
#include <QtCore/QStandardPaths>
#include <QtWidgets/QApplication>

int main(int argc, char *argv[])
{
    ::testing::InitGoogleMock(&argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    // The loader's statistics are of no interest here.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
