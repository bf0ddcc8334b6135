#include "support/NameTimes.h"

#include <gtest/gtest.h>

#include <ctime>

namespace OrvTest {

namespace {

/// Seconds of this thread.
double cpuTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + 1e-9 * double(time.tv_nsec);
}

/// As many names of the same length that do not collide: the colliding ones with a number
/// in front.
std::vector<QString> harmless(const std::vector<QString> &names)
{
    std::vector<QString> others;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const QString number = QStringLiteral("%1").arg(i, 6, 10, QLatin1Char('0'));
        others.push_back(number + names[i].mid(number.size()));
    }
    return others;
}

} // namespace

void expectNoLonger(const std::vector<QString> &names,
                    const std::function<void(const std::vector<QString> &names)> &use)
{
    const double begin = cpuTime();
    use(harmless(names));
    const double middle = cpuTime();
    use(names);
    const double end = cpuTime();
    EXPECT_LT(end - middle, 3 * (middle - begin) + 0.5);
}

} // namespace OrvTest
