// Names that collide in every hash table of Qt, as those of materials, of textures and of what faces
// select: some bytes say which names stand where, twelve thousand at most. Both paths of the loader
// make the same of them, a check finds what they make, and none takes longer for them: a single table
// that is searched name by name takes many times as long.
#include "support/CollidingNames.h"
#include "support/Fuzzing.h"
#include "support/PreparedOBJ.h"

#include "OBJCheck.h"

#include <QtCore/QBuffer>

#include <algorithm>
#include <vector>

using namespace Halvard::Orv;
using namespace OrvFuzz;

namespace {

constexpr int MostNames = 12'000;

const QByteArray &nameAt(int number)
{
    static const std::vector<QByteArray> names = [] {
        std::vector<QByteArray> bytes;
        for (const QString &name : OrvTest::collidingNames(MostNames))
            bytes.push_back(name.toLatin1());
        return bytes;
    }();
    return names[static_cast<std::size_t>(number % MostNames)];
}

struct Texts
{
    QByteArray obj = "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\n";
    QByteArray mtl{};
};

/// Runs of names: where they stand, the first one, the distance from one to the next (backwards, and
/// the same name again, too), and how many.
Texts textsOf(Input &input)
{
    Texts texts;
    int left = MostNames;
    while (!input.isAtEnd() && left > 0) {
        const unsigned place = input.below(6);
        int number = input.take<std::uint16_t>();
        const int step = input.take<std::int8_t>();
        const int count = std::min<int>(input.take<std::uint16_t>(), left);
        left -= count + 1;
        for (int i = 0; i < count; ++i) {
            const QByteArray &name = nameAt(number);
            number = (number + step + MostNames) % MostNames;
            switch (place) {
            case 0:
                texts.mtl += "newmtl " + name + '\n';
                break;
            case 1:
                texts.mtl += "map_Kd " + name + '\n';
                break;
            case 2:
                texts.mtl += "newmtl " + name + "\nmap_Ks " + name + '\n';
                break;
            case 3:
                texts.obj += "usemtl " + name + '\n';
                break;
            case 4:
                texts.obj += "usemtl " + name + "\nf 1 2 3\n";
                break;
            default: // a character that has the line decoded
                texts.obj += "usemtl " + name + " \xc3\xa9\nf 3 2 1\n";
                break;
            }
        }
    }
    return texts;
}

ModelFindings check(QByteArray text, const QString &directory)
{
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    CheckOptions options;
    options.decodeTextures = false;
    Checking::OBJCheck check(directory + QStringLiteral("/model.obj"), options);
    Checking::OBJLines lines(device, {});
    while (lines.next())
        require(check.takeLine(lines), "a small text passes a limit");
    check.finish(lines);
    return check.result();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    const Texts texts = textsOf(input);
    LibraryDirectory &libraries = LibraryDirectory::instance();
    libraries.write(texts.mtl);
    const PreparedOBJ lines = prepareByLines(texts.obj, libraries.path(), largeChunks());
    const PreparedOBJ bytes = prepareByBytes(texts.obj, libraries.path(), largeChunks());
    require(bytes.outcome == OBJScanOutcome::Finished, "names need the line reader");
    for (const std::string &difference : differences(lines, bytes))
        fail(difference);
    require(check(texts.obj, libraries.path()).triangles == bytes.prepared.bundle().triangleCount(),
            "other triangles than the loader's");
    return 0;
}
