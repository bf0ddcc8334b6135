/// \file
/// What all contestants measure and print, in the same way.
#pragma once

#include <time.h>

#include <cstdio>
#include <cstring>

/// Milliseconds of a clock.
inline double milliseconds(clockid_t clock)
{
    timespec time;
    clock_gettime(clock, &time);
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
}

/// Wall and CPU time of the process, all its threads.
struct Moment
{
    double wall = milliseconds(CLOCK_MONOTONIC);
    double cpu = milliseconds(CLOCK_PROCESS_CPUTIME_ID);
};

/// Memory in KiB, now and at most so far.
inline long residentNow()
{
    long pages = 0;
    if (FILE *file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%*d %ld", &pages) != 1)
            pages = 0;
        std::fclose(file);
    }
    return pages * 4;
}

/// Not ru_maxrss, which begins with the peak of whoever started the program.
inline long residentPeak()
{
    long kilobytes = 0;
    if (FILE *file = std::fopen("/proc/self/status", "r")) {
        char line[128];
        while (std::fgets(line, sizeof line, file) &&
               std::sscanf(line, "VmHWM: %ld", &kilobytes) != 1) {
        }
        std::fclose(file);
    }
    return kilobytes;
}

/// One load: times in milliseconds, memory in KiB beyond what the process held
/// before it. What a graphics driver took stands apart.
struct Measurement
{
    double wall = 0;
    double cpu = 0;
    double driverWall = 0;
    double driverCPU = 0;
    long peak = 0;
    long peakBeforeDriver = 0;
    size_t vertices = 0;
    size_t triangles = 0;
};

inline void print(const Measurement &m)
{
    std::printf("{\"wall\": %.3f, \"cpu\": %.3f, \"driverWall\": %.3f, \"driverCPU\": %.3f, "
                "\"peak\": %ld, \"peakBeforeDriver\": %ld, \"vertices\": %zu, "
                "\"triangles\": %zu",
                m.wall, m.cpu, m.driverWall, m.driverCPU, m.peak, m.peakBeforeDriver, m.vertices,
                m.triangles);
}

/// Measures and prints one load without a driver, as a program's outcome.
/// \param load whether loading went well; notes vertices and triangles.
template <typename Load>
int measureLoad(const Load &load)
{
    Measurement measured;
    const long before = residentNow();
    const Moment begin;
    if (!load(measured))
        return 1;
    const Moment end;
    measured.wall = end.wall - begin.wall;
    measured.cpu = end.cpu - begin.cpu;
    measured.peak = measured.peakBeforeDriver = residentPeak() - before;
    print(measured);
    std::printf("}\n");
    return 0;
}
