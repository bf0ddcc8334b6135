// The exported parts one by one: reading lines, converting numbers, welding rows,
// triangulating by corner count, normals.
//
// Each result is checked, so that a part that got fast by being wrong stands out.
#include "Numbers/NumberConversion.h"
#include "Welding/RowWelding.h"

#include <OrvModel/OBJReader.h>
#include <OrvModel/TriMeshVertexNormals.h>
#include <OrvModel/Triangulate3D.h>

#include <benchmark/benchmark.h>

#include <QtCore/QTextStream>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

using namespace Halvard::Orv;

namespace {

/// A number of up to six decimals, as exporters write them.
std::string numberText(unsigned i)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6f", std::sin(0.37 * i) * (i % 7 == 0 ? 100.0 : 1.0));
    return text;
}

void readLines(benchmark::State &state, const char *keyword, int numbers)
{
    QString text;
    constexpr int Lines = 2000;
    for (unsigned line = 0; line < Lines; ++line) {
        text += QLatin1String(keyword);
        for (int i = 0; i < numbers; ++i) {
            const QString number = QString::fromStdString(numberText(line * 4 + unsigned(i)));
            text += QLatin1Char(' ') + (*keyword == 'f' ? QStringLiteral("%1/%2/%1")
                                                              .arg(line + unsigned(i) + 1)
                                                              .arg(line + 2 * unsigned(i) + 1)
                                                        : number);
        }
        text += QLatin1Char('\n');
    }
    for (auto _ : state) {
        QTextStream stream(&text, QIODevice::ReadOnly);
        int parsed = 0;
        for (OBJReader reader(stream); reader.valid(); reader.next())
            parsed += reader.parseLine();
        if (parsed != Lines)
            state.SkipWithError("lines were lost");
    }
    state.SetItemsProcessed(state.iterations() * Lines);
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK_CAPTURE(readLines, v, "v", 3);
BENCHMARK_CAPTURE(readLines, vt, "vt", 2);
BENCHMARK_CAPTURE(readLines, f, "f", 4);

void convertNumbers(benchmark::State &state, bool qt)
{
    std::vector<std::string> texts;
    for (unsigned i = 0; i < 1000; ++i)
        texts.push_back(numberText(i));
    for (auto _ : state) {
        for (const std::string &text : texts) {
            const char *begin = text.data();
            const char *end = begin + text.size();
            const auto size = static_cast<int>(text.size());
            benchmark::DoNotOptimize(qt ? QString::fromLatin1(begin, size).toFloat()
                                        : floatFromToken(begin, end));
        }
    }
    for (const std::string &text : texts) {
        if (floatFromToken(text.data(), text.data() + text.size()) !=
            QString::fromStdString(text).toFloat())
            state.SkipWithError("a number differs from Qt's");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(texts.size()));
}
BENCHMARK_CAPTURE(convertNumbers, ours, false);
BENCHMARK_CAPTURE(convertNumbers, QString, true);

/// Rows of 32 bytes, each of them six times, as in a mesh of triangles.
void weld(benchmark::State &state)
{
    const auto rows = static_cast<int>(state.range(0));
    std::vector<float> table(8 * static_cast<size_t>(rows));
    for (size_t row = 0; row < static_cast<size_t>(rows); ++row) {
        for (size_t i = 0; i < 8; ++i)
            table[8 * row + i] = static_cast<float>((row * 7919 % static_cast<size_t>(rows)) / 6);
    }
    const QVector<RowColumn> columns{{reinterpret_cast<const char *>(table.data()), 32}};
    QVector<int> oldToNew;
    QVector<int> newToOld;
    for (auto _ : state)
        weldRows(columns, rows, oldToNew, newToOld);
    if (newToOld.size() != (rows + 5) / 6)
        state.SkipWithError("wrong number of rows");
    state.SetItemsProcessed(state.iterations() * rows);
}
BENCHMARK(weld)->Arg(6000)->Arg(600000)->Unit(benchmark::kMicrosecond);

/// A star: every other corner is reflex, so that ears have to be looked for.
void triangulate(benchmark::State &state)
{
    const auto count = static_cast<int>(state.range(0));
    std::vector<float> positions;
    std::vector<int> ring;
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * M_PI * i / count;
        const double radius = count > 4 && i % 2 ? 0.6 : 1.0;
        positions.push_back(static_cast<float>(radius * std::cos(angle)));
        positions.push_back(static_cast<float>(radius * std::sin(angle)));
        positions.push_back(0.0f);
        ring.push_back(i);
    }
    QVector<unsigned> triangles;
    for (auto _ : state) {
        triangles.clear();
        Triangulate3D(count, ring.data(), positions.data(), triangles);
    }
    if (triangles.size() != 3 * (count - 2))
        state.SkipWithError("wrong number of triangles");
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(triangulate)
    ->Arg(3)
    ->Arg(4)
    ->Arg(5)
    ->Arg(8)
    ->Arg(16)
    ->Arg(64)
    ->Arg(256)
    ->Arg(1000)
    ->Arg(10000);

/// A wavy sheet of `range` x `range` cells.
void normals(benchmark::State &state)
{
    const auto size = static_cast<unsigned>(state.range(0));
    std::vector<float> positions;
    for (unsigned i = 0; i < size * size; ++i) {
        const auto x = static_cast<float>(i % size);
        const auto y = static_cast<float>(i / size);
        positions.insert(positions.end(), {x, y, std::sin(0.3f * x)});
    }
    std::vector<unsigned> indices;
    for (unsigned y = 0; y + 1 < size; ++y) {
        for (unsigned x = 0; x + 1 < size; ++x) {
            const unsigned at = y * size + x;
            indices.insert(indices.end(),
                           {at, at + 1, at + size + 1, at, at + size + 1, at + size});
        }
    }
    std::vector<float> out(positions.size());
    for (auto _ : state)
        TriMeshVertexNormals(static_cast<int>(size * size), static_cast<int>(indices.size()),
                             positions.data(), indices.data(), out.data());
    for (size_t i = 0; i < out.size(); i += 3) {
        const float square = out[i] * out[i] + out[i + 1] * out[i + 1] + out[i + 2] * out[i + 2];
        if (std::abs(square - 1.0f) > 1e-4f)
            state.SkipWithError("a normal is not of unit length");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(indices.size() / 3));
}
BENCHMARK(normals)->Arg(30)->Arg(600)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
