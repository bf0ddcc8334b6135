// The threads beside the window's, and what becomes of their work where none can be started.
#include "support/WithoutThreads.h"

#include <OrvModel/PreparedModel.h>

#include <gtest/gtest.h>

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include <memory>
#include <thread>
#include <vector>
#include <viewer/ModelLoader.h>
#include <viewer/Worker.h>
#include <viewer/panels/ModelChecker.h>

namespace {

using namespace OrvTest;
using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;

constexpr int LongestWait = 20000; // milliseconds

TEST(Worker, DoesJobsInTheirOrderOnOneOtherThread)
{
    std::vector<int> done;
    std::vector<std::thread::id> threads;
    Worker worker;
    for (int i = 0; i < 100; ++i)
        worker.start([&, i] {
            done.push_back(i);
            threads.push_back(std::this_thread::get_id());
        });
    worker.finish();
    std::vector<int> all(100);
    for (int i = 0; i < 100; ++i)
        all[static_cast<std::size_t>(i)] = i;
    EXPECT_EQ(done, all);
    EXPECT_EQ(threads, std::vector<std::thread::id>(100, threads.front()));
    EXPECT_NE(threads.front(), std::this_thread::get_id());
}

TEST(Worker, BeginsAnewOnceItHasFinished)
{
    int done = 0;
    Worker worker;
    worker.finish();
    worker.start([&] { ++done; });
    worker.finish();
    worker.start([&] { ++done; });
    worker.finish();
    EXPECT_EQ(done, 2);
}

TEST(Worker, DoesAJobAtOnceWhereNoThreadCanBeStarted)
{
    Worker worker;
    std::thread::id thread;
    {
        const WithoutThreads none;
        worker.start([&] { thread = std::this_thread::get_id(); });
        EXPECT_EQ(thread, std::this_thread::get_id());
    }
    worker.start([&] { thread = std::this_thread::get_id(); });
    worker.finish();
    EXPECT_NE(thread, std::this_thread::get_id()) << "later it can";
}

TEST(WindowWithoutThreads, LoadsAModelWithItsTextures)
{
    const WithoutThreads none;
    ModelLoader loader;
    std::shared_ptr<LoadedFile> file;
    QEventLoop loop;
    QObject::connect(&loader, &ModelLoader::loaded, &loop,
                     [&](const std::shared_ptr<LoadedFile> &loaded) {
                         file = loaded;
                         loop.quit();
                     });
    QObject::connect(&loader, &ModelLoader::failed, &loop, &QEventLoop::quit);
    QTimer::singleShot(LongestWait, &loop, &QEventLoop::quit);
    loader.load(QStringLiteral(ORV_SAMPLES_DIR "/lighthouse.obj"), 4096);
    loop.exec();
    ASSERT_TRUE(file && file->model);
    EXPECT_FALSE(loader.isLoading());
    EXPECT_GT(file->model->commands().size(), 0);
    EXPECT_TRUE(file->textures);
}

TEST(WindowWithoutThreads, ChecksAModel)
{
    const WithoutThreads none;
    ModelChecker checker;
    std::shared_ptr<const ModelFindings> findings;
    QEventLoop loop;
    QObject::connect(&checker, &ModelChecker::checked, &loop,
                     [&](const std::shared_ptr<const ModelFindings> &checked) {
                         findings = checked;
                         loop.quit();
                     });
    QObject::connect(&checker, &ModelChecker::failed, &loop, &QEventLoop::quit);
    QTimer::singleShot(LongestWait, &loop, &QEventLoop::quit);
    checker.check(QStringLiteral(ORV_SAMPLES_DIR "/lighthouse.obj"));
    loop.exec();
    EXPECT_TRUE(findings);
    EXPECT_FALSE(checker.isBusy());
}

} // namespace
