// Shows a turning model, and goes on turning it while the next one loads.
//
//     window [--measure SECONDS] [--picture OUT.png] MODEL.obj...
#include "ModelView.h"

#include <OrvModel/InstanceDataPlans.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QFileInfo>
#include <QtCore/QLoggingCategory>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QShortcut>
#include <QtWidgets/QVBoxLayout>

#include <cstdio>

int main(int count, char **arguments)
{
    QLoggingCategory::setFilterRules("default.debug=false"); // what welding did, for example
    QSurfaceFormat format;
    format.setVersion(4, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setDepthBufferSize(24);
    QSurfaceFormat::setDefaultFormat(format); // before the application is made
    QApplication application(count, arguments);
    Halvard::Orv::registerOBJMaterial(); // once: models without a library bring no plan

    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument("MODEL.obj...", "shown one after the other: press the space bar");
    const QCommandLineOption measure(
        "measure",
        "Show the first model for so long, load the others with as long "
        "in between, print how long frames took, and quit.",
        "SECONDS");
    const QCommandLineOption picture("picture", "Write the last model's picture.", "OUT.png");
    parser.addOptions({measure, picture});
    parser.process(application);
    const QStringList models = parser.positionalArguments();
    if (models.isEmpty())
        parser.showHelp(2);

    QWidget window;
    auto *view = new ModelView;
    auto *bar = new QProgressBar;
    auto *layout = new QVBoxLayout(&window); // owns both
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view, 1);
    layout->addWidget(bar);
    window.resize(640, 500);

    int next = 0;
    const auto loadNext = [&] {
        window.setWindowTitle("Loading " + QFileInfo(models[next % models.size()]).fileName());
        view->load(models[next++ % models.size()]);
    };
    const auto finish = [&] {
        const QImage last = view->grabFramebuffer(); // draws, which ends the frame before
        std::fputs(qPrintable(view->frameTimes.report()), stdout);
        if (parser.isSet(picture) && !last.save(parser.value(picture))) {
            std::fputs("The picture cannot be written.\n", stderr);
            return application.exit(1);
        }
        application.quit();
    };
    view->onProgress = [&](double fraction) { bar->setValue(int(100 * fraction)); };
    view->onFailure = [&](const QString &error) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        window.setWindowTitle(error); // the model before stays
        if (parser.isSet(measure))
            application.exit(1);
    };
    view->onShown = [&] {
        window.setWindowTitle(QFileInfo(models[(next - 1) % models.size()]).fileName());
        bar->setValue(100);
        if (!parser.isSet(measure))
            return;
        if (next == models.size())
            return QTimer::singleShot(0, view, finish); // behind the frame that is being drawn
        if (next == 1)
            view->frameTimes.clear(); // nothing was drawn so far
        QTimer::singleShot(int(1000 * parser.value(measure).toDouble()), view, loadNext);
    };
    QObject::connect(new QShortcut(Qt::Key_Space, &window), &QShortcut::activated, loadNext);

    window.show();
    loadNext();
    return application.exec();
}
