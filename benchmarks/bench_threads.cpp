// Reading and preparing whole files on several threads.
//
//     bench_threads [--threads 1,2,4] [--repeat N] FILE.obj...
//
// For each file and number of threads, in turns: wall milliseconds, the median and the least
// of N rounds, and CPU milliseconds; those of reading and of preparing, the least of each; and
// the stages' wall time in the fastest round. Nothing is uploaded. What is prepared must be the
// same for all numbers of threads.
#include "Libraries/MaterialLibraries.h"
#include "Preparing/GeometryPreparing.h"
#include "Reports/CurrentReport.h"
#include "Scanning/OBJScanning.h"
#include "Threads/Work.h"

#include <OrvCore/InstanceData.h>
#include <OrvModel/ModelBuilder.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLoggingCategory>
#include <QtCore/QThreadPool>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <string>
#include <vector>

using namespace Halvard::Orv;

namespace {

struct Moment
{
    Moment()
    {
        timespec time;
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        cpu = 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
        wall = std::chrono::duration<double, std::milli>(
                   std::chrono::steady_clock::now().time_since_epoch())
                   .count();
    }

    double cpu;
    double wall;
};

struct Times
{
    double readWall = 1e9;
    double readCPU = 1e9;
    double prepareWall = 1e9;
    double prepareCPU = 1e9;
    double allWall = 1e9;
    double allCPU = 1e9;
    std::vector<double> walls;
    PreparationReport::Stages stages; ///< of the round with the least wall time
};

/// A number that differs where any bit of the model does, most likely.
quint64 digest(const PreparedGeometry &prepared)
{
    quint64 value = 14695981039346656037u;
    const auto add = [&](const void *bytes, size_t count) {
        const auto *words = static_cast<const char *>(bytes);
        for (size_t i = 0; i + 4 <= count; i += 4) {
            quint32 word;
            std::memcpy(&word, words + i, sizeof word);
            value = (value ^ word) * 1099511628211u;
        }
    };
    for (const PreparedGeometry::Attribute &attribute : prepared.attributes)
        add(attribute.values->data(0), attribute.values->byteCount());
    if (prepared.indices)
        add(prepared.indices->data(0), prepared.indices->byteCount());
    for (const PreparedGeometry::Command &command : prepared.commands) {
        add(&command.firstIndex, sizeof command.firstIndex);
        add(&command.count, sizeof command.count);
    }
    return value;
}

quint64 load(const QString &fileName, int threads, Times &times)
{
    QThreadPool pool;
    pool.setMaxThreadCount(threads - 1);
    pool.setExpiryTimeout(-1);
    Work work(&pool);
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(QStringLiteral("<default>"), InstanceData(), -1, 0);
    MaterialLibraries libraries(builder);
    PreparationReport report;
    const ScopedReport scope(report);

    const Moment begin;
    OBJGeometry geometry;
    QString detail;
    if (scanOBJFile(file, QFileInfo(fileName).absolutePath(), libraries, geometry, detail, {},
                    &work) != OBJScanOutcome::Finished) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(detail));
        return 0;
    }
    const Moment read;
    QStringList groups;
    for (const FaceGroup &group : geometry.groups)
        groups.prepend(group.material);
    const PreparedGeometry prepared = prepareGeometry(std::move(geometry), groups, &builder, &work);
    const Moment end;

    times.readWall = std::min(times.readWall, read.wall - begin.wall);
    times.readCPU = std::min(times.readCPU, read.cpu - begin.cpu);
    times.prepareWall = std::min(times.prepareWall, end.wall - read.wall);
    times.prepareCPU = std::min(times.prepareCPU, end.cpu - read.cpu);
    times.allCPU = std::min(times.allCPU, end.cpu - begin.cpu);
    times.walls.push_back(end.wall - begin.wall);
    if (end.wall - begin.wall < times.allWall) {
        times.allWall = end.wall - begin.wall;
        times.stages = report.stages;
    }
    return digest(prepared);
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void print(const QString &fileName, int threads, const Times &times)
{
    std::printf("%-16s %7d  %6.2f %6.2f %6.2f  %6.2f %6.2f  %6.2f %6.2f  %6.2f %6.2f %6.2f\n",
                qUtf8Printable(QFileInfo(fileName).completeBaseName()), threads,
                median(times.walls), times.allWall, times.allCPU, times.readWall, times.readCPU,
                times.prepareWall, times.prepareCPU, 1e-6 * static_cast<double>(times.stages.weld),
                1e-6 * static_cast<double>(times.stages.triangulate),
                1e-6 * static_cast<double>(times.stages.normals));
}

std::vector<int> numbersOf(const char *list)
{
    std::vector<int> numbers;
    for (const QString &number : QString::fromLatin1(list).split(QLatin1Char(',')))
        numbers.push_back(std::max(1, number.toInt()));
    return numbers;
}

} // namespace

int main(int argc, char *argv[])
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    std::vector<int> threadCounts = {1, 2};
    int rounds = 5;
    QStringList files;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--threads") == 0 && i + 1 < argc)
            threadCounts = numbersOf(argv[++i]);
        else if (std::strcmp(argv[i], "--repeat") == 0 && i + 1 < argc)
            rounds = numbersOf(argv[++i]).front();
        else
            files.append(QFile::decodeName(argv[i]));
    }
    std::printf("%-16s %7s  %6s %6s %6s  %6s %6s  %6s %6s  %6s %6s %6s\n", "ms", "threads",
                "median", "least", "CPU", "read", "CPU", "prep.", "CPU", "weld", "tri.", "norm.");
    bool same = true;
    for (const QString &file : qAsConst(files)) {
        std::map<int, Times> times;
        Times unused;
        const quint64 expected = load(file, threadCounts.front(), unused);
        for (int round = 0; round < rounds; ++round) {
            for (const int threads : threadCounts)
                same = load(file, threads, times[threads]) == expected && same;
        }
        for (const int threads : threadCounts)
            print(file, threads, times[threads]);
    }
    if (!same)
        std::fprintf(stderr, "not all loads gave the same\n");
    return same ? 0 : 1;
}
