#include "MainWindow.h"

#include <OrvModel/ModelVersions.h>
#include <common/FileNames.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QLoggingCategory>
#include <QtCore/QSettings>
#include <QtWidgets/QApplication>

using namespace Halvard::Orv;

int main(int argc, char *argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("orv-view"));
    QApplication::setOrganizationName(QStringLiteral("OrvModel"));
    QApplication::setApplicationVersion(ModelVersions::getVersion());
    QGuiApplication::setDesktopFileName(QStringLiteral("orv-view"));

    // What the loader counts is in the window.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));

    QCommandLineParser line;
    line.setApplicationDescription(
        QStringLiteral("Shows Wavefront OBJ models, and what is wrong with them."));
    line.addHelpOption();
    line.addVersionOption();
    line.addPositionalArgument(QStringLiteral("model"), QStringLiteral("The model to show."),
                               QStringLiteral("[MODEL]"));
    line.process(Apps::argumentsOf(argc, argv));

    QSettings settings;
    Viewer::MainWindow window(settings);
    window.show();
    if (!line.positionalArguments().isEmpty())
        window.open(line.positionalArguments().first());
    return QApplication::exec();
}
