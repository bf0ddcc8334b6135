#include <gmock/gmock.h>

#include <QtCore/QLoggingCategory>
#include <QtCore/QStandardPaths>
#include <QtWidgets/QApplication>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

int main(int argc, char *argv[])
{
    ::testing::InitGoogleMock(&argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    // The loader's statistics are of no interest here.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    const QApplication application(argc, argv);
    const int status = RUN_ALL_TESTS();
#ifdef __SANITIZE_ADDRESS__
    // Leaks are looked for while the OpenGL driver is still there: once it is unloaded, nobody can
    // tell what it left behind from what we did.
    __lsan_do_leak_check();
#endif
    return status;
}
