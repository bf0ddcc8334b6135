// A host program that rounds otherwise, flushes denormals, or is ended by what floating-point
// arithmetic raises gets the same bits as any other, and its own state back.
#include "support/GLTest.h"
#include "support/ModelDifferences.h"
#include "support/ModelReadBack.h"
#include "support/QtPrinting.h"
#include "support/RandomRings.h"
#include "support/TemporaryModel.h"
#include "support/TextReader.h"

#include <OrvModel/MTLReader.h>
#include <OrvModel/ModelLoading.h>
#include <OrvModel/OBJReader.h>
#include <OrvModel/PolygonDump.h>
#include <OrvModel/TextureLoading.h>
#include <OrvModel/TriMeshVertexNormals.h>
#include <OrvModel/Triangulate2D.h>
#include <OrvModel/Triangulate3D.h>

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QImage>
#include <QtGui/QVector2D>
#include <QtGui/QVector3D>

#include <array>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

/// What a host program may have set before it calls.
struct HostState
{
    const char *name;
    std::function<void()> enter;
};

std::vector<HostState> hostStates()
{
    std::vector<HostState> states = {
        {"rounding up", [] { std::fesetround(FE_UPWARD); }},
        {"rounding down", [] { std::fesetround(FE_DOWNWARD); }},
        {"rounding towards zero", [] { std::fesetround(FE_TOWARDZERO); }},
#if defined(__GLIBC__)
        {"trapping what is invalid", [] { feenableexcept(FE_INVALID); }},
        {"trapping divisions by zero", [] { feenableexcept(FE_DIVBYZERO); }},
        {"trapping overflow", [] { feenableexcept(FE_OVERFLOW); }},
        {"trapping underflow", [] { feenableexcept(FE_UNDERFLOW); }},
        {"trapping what is inexact", [] { feenableexcept(FE_INEXACT); }},
#endif
#if defined(__SSE2__)
        {"flushing denormals to zero", [] { _mm_setcsr(_mm_getcsr() | 0x8000); }},
        {"taking denormals for zero", [] { _mm_setcsr(_mm_getcsr() | 0x0040); }},
        {"trapping denormals", [] { _mm_setcsr(_mm_getcsr() & ~0x0100u); }},
#endif
    };
    return states;
}

/// What can be told of the state: the control bits, not the flags that arithmetic raises.
unsigned controlBits()
{
#if defined(__SSE2__)
    return _mm_getcsr() & ~0x3fu;
#else
    return static_cast<unsigned>(std::fegetround());
#endif
}

/// Calls `action` in the host's state, looks whether it is still that, and goes back.
void inState(const HostState &host, const std::function<void()> &action)
{
    std::fenv_t before;
    std::fegetenv(&before);
    std::feclearexcept(FE_ALL_EXCEPT); // one that is raised would trap at once
    host.enter();
    const unsigned bits = controlBits();
    action();
    const unsigned bitsAfter = controlBits();
    std::fesetenv(&before);
    EXPECT_EQ(bitsAfter, bits) << host.name;
}

/// Whether the states do what they say: else nothing below would test anything.
TEST(FloatingPointState, TheHostsStatesChangeArithmetic)
{
    volatile float three = 3.0f;
    volatile float denormal = 1e-40f;
    volatile float quotient = 0.0f;
    volatile float product = 1.0f;
    const float third = 1.0f / three;
    const HostState down{"down", [] { std::fesetround(FE_DOWNWARD); }};
    inState(down, [&] { quotient = 1.0f / three; });
    EXPECT_LT(quotient, third); // the nearest float lies above a third
#if defined(__SSE2__)
    const HostState daz{"denormals are zero", [] { _mm_setcsr(_mm_getcsr() | 0x0040); }};
    inState(daz, [&] { product = denormal * 1e20f; });
    EXPECT_EQ(product, 0.0f);
#endif
}

std::vector<std::string> bitsOf(const float *values, std::size_t count)
{
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t bits;
        std::memcpy(&bits, values + i, sizeof bits);
        texts.push_back(std::to_string(bits));
    }
    return texts;
}

// ---- Whole models -----------------------------------------------------------------

class FloatingPointStateOfLoads : public GLTest
{
protected:
    static void expectSameModel(const QString &path)
    {
        const UploadedModel expected = loadWithLibrary(path);
        for (const HostState &host : hostStates()) {
            UploadedModel model;
            inState(host, [&] { model = loadWithLibrary(path); });
            EXPECT_THAT(differences(expected, model), ::testing::IsEmpty())
                << path.toStdString() << ", " << host.name;
        }
    }
};

TEST_F(FloatingPointStateOfLoads, GiveTheSameBitsForSamples)
{
    const QDir samples(QStringLiteral(ORV_SAMPLES_DIR));
    const QStringList files = samples.entryList({QStringLiteral("*.obj")}, QDir::Files);
    ASSERT_GE(files.size(), 8);
    for (const QString &file : files)
        expectSameModel(samples.filePath(file));
}

/// Every step of the reader and of the preparation meets numbers at the ends of the range.
TEST_F(FloatingPointStateOfLoads, GiveTheSameBitsForNumbersAtTheEndsOfTheRange)
{
    const TemporaryModel directory;
    directory.write(QStringLiteral("m.mtl"), "newmtl m\nKd 0.1 1e-40 1e39\nNs 1e-45\nd 0.3\n");
    const QByteArray materials = "mtllib m.mtl\nusemtl m\n";
    const struct
    {
        const char *name;
        QByteArray text;
    } files[] = {
        {"denormals",
         "v 1e-40 0 0\nv 0 1e-41 0\nv 0 0 3e-42\nv 1e-39 1e-39 1e-45\nf 1 2 3\nf 1 2 4\n"},
        {"overflow", "v 3e38 0 0\nv -3e38 3e38 0\nv 1e39 0 1\nv nan inf 0\nf 1 2 3\nf 1 2 4\n"},
        {"decimals", "v 0.1 0.2 0.3\nv 0.7 1.1 -0.9\nv 1.3e-5 2.7e3 .1\nv .123456789123456789 5. "
                     "-1e-7\nvt 0.1 0.2\nf 1/1 2/1 3/1\nf 2/1 3/1 4/1\n"},
        {"line reader", "v\t0.1\t0.2\t0.3 \xC2\xA0\nv 0.7 1.1 -0.9\nv 1 1 1\nf 1 2 3\n"},
        {"zero areas",
         "v 0 0 0\nv 0 0 0\nv 0 0 0\nv 1 0 0\nv 2 0 0\nf 1 2 3\nf 1 4 5\nf 1 2 3 4 5\n"},
        {"ring",
         "v 0 0 0\nv 3 0 .1\nv 3.3 2.9 0\nv 1.5 0.7 0\nv -.1 3 0\nv -1 1 0\nf 1 2 3 4 5 6\n"},
    };
    for (const auto &file : files) {
        SCOPED_TRACE(file.name);
        expectSameModel(directory.write(QStringLiteral("m.obj"), materials + file.text));
    }
}

// ---- Exported functions one by one ------------------------------------------------

/// A ring in the plane and in space. Made beforehand: the test's own arithmetic must not trap.
struct Input
{
    explicit Input(const Ring &ring) : points(ring.points)
    {
        for (const QVector2D &point : points) {
            xyz.insert(xyz.end(), {point.x(), point.y(), point.x() * 0.3f});
            corners.push_back(static_cast<int>(corners.size()));
        }
    }

    int count() const { return static_cast<int>(points.size()); }
    const float *xy() const { return reinterpret_cast<const float *>(points.data()); }
    const unsigned *indices() const { return reinterpret_cast<const unsigned *>(corners.data()); }

    std::vector<QVector2D> points;
    std::vector<float> xyz;
    std::vector<int> corners; ///< 0, 1, 2 ...
};

/// A function of the library on random input, its result in words that compare.
struct Computation
{
    const char *name;
    std::function<std::vector<std::string>(const Input &)> result;
};

std::vector<std::string> texts(const QVector<int> &numbers)
{
    std::vector<std::string> lines;
    for (const int number : numbers)
        lines.push_back(std::to_string(number));
    return lines;
}

std::vector<std::string> triangulatedInPlane(const Input &input)
{
    QVector<int> triangles;
    Triangulate2D(input.count(), input.xy(), triangles, false);
    return texts(triangles);
}

std::vector<std::string> triangulatedInSpace(const Input &input)
{
    QVector<unsigned> triangles;
    Triangulate3D(input.count(), input.corners.data(), input.xyz.data(), triangles);
    std::vector<std::string> lines;
    for (const unsigned corner : triangles)
        lines.push_back(std::to_string(corner));
    return lines;
}

std::vector<std::string> evaluatedCorner(const Input &input)
{
    const int count = input.count();
    QVector<Vertex> vertices;
    for (int i = 0; i < count; ++i)
        vertices.append({(i + 1) % count, (i + count - 1) % count, 0.0f, 0.0f, true, false});
    UpdateVertex(vertices, input.points.data(), 1);
    const float numbers[] = {vertices[1].crossZ, vertices[1].cosAngle,
                             vertices[1].isEar ? 1.0f : 0.0f};
    return bitsOf(numbers, 3);
}

std::vector<std::string> degenerateTriangle(const Input &input)
{
    return {std::to_string(FindDegenerateTriangle(input.count(), input.indices(), input.xy(), 0))};
}

std::vector<std::string> vertexNormals(const Input &input)
{
    std::vector<float> normals(input.xyz.size());
    TriMeshVertexNormals(input.count(), input.count(), input.xyz.data(), input.indices(),
                         normals.data());
    return bitsOf(normals.data(), normals.size());
}

std::vector<std::string> dumpedPolygon(const Input &input)
{
    const TemporaryModel directory;
    const QString path = directory.path(QStringLiteral("dump.obj"));
    DumpAsOBJPolygon(path, input.count(), input.points.data());
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return {file.readAll().toStdString()};
}

std::vector<std::string> readValue(const Input &)
{
    TextReader<OBJReader> reader("v 0.1 1e-40 3.4028235677973366e38\n");
    EXPECT_TRUE(reader->valid() && reader->parseLine());
    return bitsOf(reader->getV(), 3);
}

std::vector<std::string> readColour(const Input &)
{
    TextReader<MTLReader> reader("Kd 0.1 1e-40 0.7\n", true);
    reader->next();
    EXPECT_TRUE(reader->parseLine());
    return bitsOf(reader->getKd(), 3);
}

TEST(FloatingPointState, EveryFunctionGivesTheSameBits)
{
    const Computation computations[] = {
        {"Triangulate2D", triangulatedInPlane},
        {"Triangulate3D", triangulatedInSpace},
        {"UpdateVertex", evaluatedCorner},
        {"FindDegenerateTriangle", degenerateTriangle},
        {"TriMeshVertexNormals", vertexNormals},
        {"DumpAsOBJPolygon", dumpedPolygon},
        {"OBJReader", readValue},
        {"MTLReader", readColour},
    };
    constexpr int Rings = 60;
    const MessageCapture capture; // rings that cannot be triangulated say so
    for (const Computation &computation : computations) {
        Dice dice(7);
        for (int i = 0; i < Rings; ++i) {
            const Ring ring = anyRing(dice, dice.between(5, 24));
            const Input input(ring);
            const std::vector<std::string> expected = computation.result(input);
            for (const HostState &host : hostStates()) {
                std::vector<std::string> result;
                inState(host, [&] { result = computation.result(input); });
                ASSERT_EQ(result, expected)
                    << computation.name << ", " << host.name << ", ring " << i << ": " << ring.name;
            }
        }
    }
}

using FloatingPointStateOfTextures = GLTest;

TEST_F(FloatingPointStateOfTextures, AreLoadedInEveryState)
{
    const TemporaryModel directory;
    // They live as long as the process, and the leak sanitizer is to find them at its end.
    static std::array<Texture *, 16> textures;
    std::size_t count = 0;
    for (const HostState &host : hostStates()) {
        const QString path = directory.path(QLatin1String(host.name) + QLatin1String(".png"));
        QImage image(5, 3, QImage::Format_ARGB32);
        image.fill(QColor(10, 200, 30, 128));
        ASSERT_TRUE(image.save(path));
        Texture *texture = nullptr;
        inState(host, [&] { texture = LoadTexture(path); });
        textures.at(count++) = texture;
        EXPECT_NE(texture, nullptr) << host.name;
    }
}

} // namespace
