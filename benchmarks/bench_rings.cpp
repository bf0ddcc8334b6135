// Triangulating one ring of very many corners, against the loops over all corners
// that define the result.
//
// Both results are compared up to 10,000 corners; above that the loops would take
// minutes, and the number of triangles is checked.
//
// The rings named "hostile" are degenerate, few of them can be cut: they are there for how
// the time grows from 65,536 to 1,048,576 corners.
#include "support/RandomRings.h"
#include "support/RingRecipes.h"

#include <OrvModel/Triangulate2D.h>

#include <benchmark/benchmark.h>

#include <QtGui/QVector2D>

#include <cmath>
#include <cstdlib>
#include <fstream>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr int MostForTheLoops = 10000;

Ring regularStar(int count)
{
    Ring ring{"star", {}};
    for (int i = 0; i < count; ++i) {
        const double angle = 6.283185307179586 * i / count;
        const double radius = i % 2 == 0 ? 1.0 : 0.5;
        ring.points.emplace_back(static_cast<float>(radius * std::cos(angle)),
                                 static_cast<float>(radius * std::sin(angle)));
    }
    return ring;
}

Ring circle(int count)
{
    Ring ring{"circle", {}};
    for (int i = 0; i < count; ++i) {
        const double angle = 6.283185307179586 * i / count;
        ring.points.emplace_back(static_cast<float>(std::cos(angle)),
                                 static_cast<float>(std::sin(angle)));
    }
    return ring;
}

Ring ringOf(const std::string &shape, int count)
{
    Dice dice(1);
    if (shape == "star")
        return regularStar(count);
    if (shape == "randomStar")
        return starRing(dice, count);
    if (shape == "comb")
        return combRing(count / 2);
    if (shape == "spiral")
        return spiralRing(count);
    if (shape == "circle")
        return circle(count);
    return windingRing(dice, count);
}

QVector<int> triangulated(const Ring &ring)
{
    QVector<int> triangles;
    Triangulate2D(static_cast<int>(ring.points.size()),
                  reinterpret_cast<const float *>(ring.points.data()), triangles, false);
    return triangles;
}

/// The definition word for word: for every ear a loop over all corners, and for every
/// corner that has to be looked at anew another in UpdateVertex().
QVector<int> triangulatedByLoops(const Ring &ring)
{
    const int count = static_cast<int>(ring.points.size());
    const QVector2D *points = ring.points.data();
    QVector<Vertex> vertices;
    for (int i = 0; i < count; ++i)
        vertices.append({(i + 1) % count, (i + count - 1) % count, 0.0f, 0.0f, true, false});
    for (int i = 0; i < count; ++i)
        UpdateVertex(vertices, points, i);
    QVector<int> triangles;
    for (int left = count; left >= 3; --left) {
        int best = -1;
        for (int i = 0; i < count; ++i) {
            const Vertex &corner = vertices.at(i);
            if (corner.isActive && (corner.isEar || left == 3) &&
                (best < 0 || (left > 3 && corner.cosAngle > vertices.at(best).cosAngle)))
                best = i;
        }
        if (best < 0)
            return {};
        const int prev = vertices.at(best).prev;
        const int next = vertices.at(best).next;
        triangles << prev << best << next;
        vertices[best].isActive = false;
        vertices[prev].next = next;
        vertices[next].prev = prev;
        UpdateVertex(vertices, points, prev);
        UpdateVertex(vertices, points, next);
    }
    return triangles;
}

/// For other programs, see contestants/earcut_rings.py.
void write(const Ring &ring, const std::string &name)
{
    if (const char *directory = std::getenv("ORV_RINGS_DIR")) {
        std::ofstream file(std::string(directory) + "/" + name, std::ios::binary);
        file.write(reinterpret_cast<const char *>(ring.points.data()),
                   static_cast<std::streamsize>(ring.points.size() * sizeof(QVector2D)));
    }
}

void lookedUp(benchmark::State &state, const std::string &shape)
{
    const Ring ring = ringOf(shape, static_cast<int>(state.range(0)));
    write(ring, shape + "-" + std::to_string(state.range(0)));
    QVector<int> triangles;
    for (auto _ : state)
        triangles = triangulated(ring);
    if (triangles.size() != 3 * (static_cast<int>(ring.points.size()) - 2))
        state.SkipWithError("wrong number of triangles");
    if (state.range(0) <= MostForTheLoops && triangles != triangulatedByLoops(ring))
        state.SkipWithError("other triangles than defined");
    state.SetItemsProcessed(state.iterations() * static_cast<int>(ring.points.size()));
}

void loops(benchmark::State &state, const std::string &shape)
{
    const Ring ring = ringOf(shape, static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(triangulatedByLoops(ring));
    state.SetItemsProcessed(state.iterations() * static_cast<int>(ring.points.size()));
}

void sizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(16)->Arg(64)->Arg(256)->Arg(1000)->Arg(10000);
}

#define BENCHMARK_SHAPE(shape)                                                                     \
    BENCHMARK_CAPTURE(lookedUp, shape, #shape)->Apply(sizes)->Arg(100000);                         \
    BENCHMARK_CAPTURE(loops, shape, #shape)->Apply(sizes)
BENCHMARK_SHAPE(star);
BENCHMARK_SHAPE(randomStar);
BENCHMARK_SHAPE(comb);
BENCHMARK_SHAPE(spiral);
BENCHMARK_SHAPE(circle);
BENCHMARK_SHAPE(winding);

void hostile(benchmark::State &state, const RingRecipe &recipe)
{
    Dice dice(1);
    const int count = static_cast<int>(state.range(0));
    const Ring ring{"hostile", OrvTest::ringOf(recipe, count, dice)};
    QVector<int> triangles;
    for (auto _ : state)
        triangles = triangulated(ring);
    if (!triangles.isEmpty() && triangles.size() != 3 * (count - 2))
        state.SkipWithError("wrong number of triangles");
    if (count <= MostForTheLoops && triangles != triangulatedByLoops(ring))
        state.SkipWithError("other triangles than defined");
    state.SetItemsProcessed(state.iterations() * count);
}

/// Each once: a ring of a million corners takes a second or more.
void registerHostileRings()
{
    for (const RingFamily &family : hostileRings()) {
        const std::string name = std::string("hostile/") + family.name;
        benchmark::RegisterBenchmark(name.c_str(), hostile, family.recipe)
            ->Arg(4096)
            ->RangeMultiplier(2)
            ->Range(1 << 16, 1 << 20)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    }
}

/// That a ring cannot be cut is what is measured; a line each time would be, too.
void ignoreMessage(QtMsgType, const QMessageLogContext &, const QString &) {}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(ignoreMessage);
    registerHostileRings();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
}
