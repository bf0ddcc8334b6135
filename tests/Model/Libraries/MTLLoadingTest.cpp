#include "support/LoadedOBJ.h"
#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/TemporaryModel.h"

#include <OrvModel/ModelLoading.h>

#include <gmock/gmock.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <map>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Inspector = ModelBuilderInspector;
using Lines = std::vector<std::string>;
/// Material name to the lines of its record.
using Materials = std::map<std::string, Lines>;

Materials materialsOf(ModelBuilder &builder)
{
    Materials materials;
    for (const auto &[name, group] : Inspector::materialGroups(builder))
        materials[name.toStdString()] = described(group.instanceData);
    return materials;
}

class MTLLoading : public ::testing::Test
{
protected:
    QString write(const QByteArray &text)
    {
        return _directory.write(QStringLiteral("materials.mtl"), text);
    }

    /// The materials of a file, which must load without a word.
    Materials loaded(const QByteArray &text)
    {
        ModelBuilder builder({}, 0);
        const MessageCapture capture;
        EXPECT_TRUE(loadMaterialsFromMTLFile(write(text), builder));
        EXPECT_THAT(capture.messages(), IsEmpty());
        return materialsOf(builder);
    }

    std::string besideFile(const std::string &name) const
    {
        return _directory.directory().toStdString() + "/" + name;
    }

    TemporaryModel _directory;
};

struct FileCase
{
    const char *name;
    QByteArray text;
    Materials materials;
};

const Lines Opaque{"d 1"};

/// Paths in the text are absolute here, as they come back.
const FileCase FileCases[] = {
    {"nothing", "", {}},
    {"comments", "# newmtl a\n\n   # Kd 1 1 1\n", {}},
    {"one material", "newmtl a\nKd 1 0 0\n", {{"a", {"Kd 1 0 0", "d 1"}}}},
    {"no line end at the end", "newmtl a\nKd 1 0 0", {{"a", {"Kd 1 0 0", "d 1"}}}},
    {"every keyword",
     "newmtl a\nKa .1 .2 .3\nKd .4 .5 .6\nKs .7 .8 .9\nNs 25\nd 0.5\n"
     "map_Kd /kd.png\nmap_Ks /ks.png\nmap_Ka /ka.png\nmap_Ns /ns.png\n",
     {{"a",
       {"Ka 0.1 0.2 0.3", "Kd 0.4 0.5 0.6", "Ks 0.7 0.8 0.9", "Ns 25", "d 0.5", "map_Ka /ka.png",
        "map_Kd /kd.png", "map_Ks /ks.png", "map_Ns /ns.png"}}}},
    {"nothing but a name", "newmtl a\n", {{"a", Opaque}}},
    {"two materials",
     "newmtl a\nNs 1\nnewmtl b\nNs 2\n",
     {{"a", {"Ns 1", "d 1"}}, {"b", {"Ns 2", "d 1"}}}},
    {"opacity belongs to the section before",
     "newmtl a\nd 0.5\nnewmtl b\n",
     {{"a", {"d 0.5"}}, {"b", Opaque}}},
    {"values and maps are not handed on",
     "newmtl a\nKd 1 1 1\nmap_Kd /x.png\nnewmtl b\nNs 1\n",
     {{"a", {"Kd 1 1 1", "d 1", "map_Kd /x.png"}}, {"b", {"Ns 1", "d 1"}}}},
    {"values before the first name", "Kd 1 0 0\nd 0.5\nmap_Kd /x.png\nnewmtl a\n", {{"a", Opaque}}},
    {"values without any name", "Kd 1 0 0\nd 0.5\n", {}},
    {"the first of two of one name", "newmtl a\nNs 1\nnewmtl a\nNs 2\n", {{"a", {"Ns 1", "d 1"}}}},
    {"the first of two apart",
     "newmtl a\nNs 1\nnewmtl b\nnewmtl a\nNs 2\nnewmtl c\n",
     {{"a", {"Ns 1", "d 1"}}, {"b", Opaque}, {"c", Opaque}}},
    {"names differ by case",
     "newmtl a\nNs 1\nnewmtl A\nNs 2\n",
     {{"a", {"Ns 1", "d 1"}}, {"A", {"Ns 2", "d 1"}}}},
    {"the last of two values", "newmtl a\nNs 1\nNs 2\n", {{"a", {"Ns 2", "d 1"}}}},
    {"the last of two maps",
     "newmtl a\nmap_Kd /1.png\nmap_Kd /2.png\n",
     {{"a", {"d 1", "map_Kd /2.png"}}}},
    {"a name ends at a blank", "newmtl red metal\n", {{"red", Opaque}}},
    {"a name ends at a comment", "newmtl a#b\n", {{"a", Opaque}}},
    {"a line without a name does not end the section",
     "newmtl a\nNs 1\nnewmtl\nKd 1 1 1\nnewmtl # b\nd 0.5\n",
     {{"a", {"Kd 1 1 1", "Ns 1", "d 0.5"}}}},
    {"a line without a name begins nothing", "newmtl\nKd 1 1 1\n", {}},
    {"malformed lines",
     "newmtl a\nKd 1 1\nKs x y z\nKa spectral file.rfl\nNs\nd -\nmap_Kd\nNs 3\n",
     {{"a", {"Ns 3", "d 1"}}}},
    {"a malformed line keeps the value before",
     "newmtl a\nKd 1 0 0\nd 0.5\nKd 0 1\nd x\n",
     {{"a", {"Kd 1 0 0", "d 0.5"}}}},
    {"unknown keywords",
     "newmtl a\nillum 2\nNi 1.5\nTr 0.5\nTf 1 1 1\nKe 1 1 1\nmap_Ke /x.png\nmap_d /x.png\nbump "
     "/x.png\nkd 1 1 1\n",
     {{"a", Opaque}}},
    {"numbers are read as far as they go",
     "newmtl a\nKd 1-2 3\nNs 10abc\nKs 1 1 1 1\n",
     {{"a", {"Kd 1 -2 3", "Ks 1 1 1", "Ns 10", "d 1"}}}},
    {"CRLF", "newmtl a\r\nNs 1\r\n\r\nnewmtl b\r\n", {{"a", {"Ns 1", "d 1"}}, {"b", Opaque}}},
    {"lone CRs", "newmtl a\rNs 1\rnewmtl b\r", {{"aNs", Opaque}}},
    {"byte-order mark", "\xef\xbb\xbfnewmtl a\nNs 1\n", {{"a", {"Ns 1", "d 1"}}}},
    {"leading blanks", "  newmtl a\n\tNs 1\n", {{"a", {"Ns 1", "d 1"}}}},
    {"an OBJ file", "v 1 2 3\nf 1 2 3\nusemtl a\n", {}},
    {"a name like the plan's", "newmtl OBJMaterial\n", {{"OBJMaterial", Opaque}}},
};

TEST_F(MTLLoading, MakesAGroupOfEachSection)
{
    for (const FileCase &row : FileCases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(loaded(row.text), row.materials);
    }
}

TEST_F(MTLLoading, StoresFloats)
{
    ModelBuilder builder({}, 0);
    ASSERT_TRUE(loadMaterialsFromMTLFile(
        write("newmtl a\nKa 1 2 3\nKd 0.1 1e39 nan\nKs 1 2 3\nNs -7e-46\n"), builder));
    const InstanceData record = Inspector::materialGroup(builder, QStringLiteral("a")).instanceData;
    EXPECT_EQ(record.name(), QStringLiteral("OBJMaterial"));
    for (const char *color : {"Ka", "Kd", "Ks"})
        EXPECT_EQ(record.value(QLatin1String(color)).size(), 12) << color;
    // 0.1 is 0x3dcccccd, infinity 0x7f800000, NaN 0x7fc00000, -0.0 0x80000000.
    EXPECT_EQ(record.value(QStringLiteral("Kd")), QByteArray::fromHex("cdcccc3d0000807f0000c07f"));
    EXPECT_EQ(record.value(QStringLiteral("Ns")), QByteArray::fromHex("00000080"));
    EXPECT_EQ(record.value(QStringLiteral("d")), QByteArray::fromHex("0000803f"));
}

TEST_F(MTLLoading, MakesGroupsWithoutFacesOrFlags)
{
    ModelBuilder builder({}, ~quint64(0));
    ASSERT_TRUE(loadMaterialsFromMTLFile(write("newmtl a\n"), builder));
    const ModelBuilder::MaterialGroup group =
        Inspector::materialGroup(builder, QStringLiteral("a"));
    EXPECT_EQ(group.flags, 0u);
    EXPECT_EQ(group.id, 0);
    EXPECT_TRUE(group.objectName.isNull());
    ASSERT_TRUE(group.faces);
    EXPECT_TRUE(group.faces->isEmpty());
    EXPECT_FALSE(builder.hasVertexAttribute(QStringLiteral("va_Vertex")));
}

/// In the order in which the sections close, behind the groups that were there.
TEST_F(MTLLoading, NumbersGroups)
{
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(QStringLiteral("<default>"), InstanceData(), -1, 0);
    ASSERT_TRUE(loadMaterialsFromMTLFile(
        write("newmtl b\nnewmtl a\nnewmtl b\nnewmtl <default>\nnewmtl c\n"), builder));
    EXPECT_EQ(builder.materialGroupId(QStringLiteral("<default>")), 0);
    EXPECT_EQ(builder.materialGroupId(QStringLiteral("b")), 1);
    EXPECT_EQ(builder.materialGroupId(QStringLiteral("a")), 2);
    EXPECT_EQ(builder.materialGroupId(QStringLiteral("c")), 3);
}

/// Memory that ends while the file is read is a library that cannot be loaded; what the
/// caller's own allocator throws is the caller's.
TEST_F(MTLLoading, PassesOnWhatTheAllocatorThrows)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0);
    const QString library = write("newmtl a\nnewmtl b\nnewmtl c\n");
    for (const bool isMemory : {true, false}) {
        int groups = 0;
        allocator->log().watch([&](const std::string &line) {
            if (line.rfind("alloc", 0) != 0 || ++groups < 2)
                return;
            if (isMemory)
                throw std::bad_alloc();
            throw 7;
        });
        const MessageCapture messages;
        if (isMemory)
            EXPECT_THROW(loadMaterialsFromMTLFile(library, builder), std::bad_alloc);
        else
            EXPECT_THROW(loadMaterialsFromMTLFile(library, builder), int);
        allocator->log().watch(nullptr);
        EXPECT_TRUE(builder.hasMaterialGroup(QStringLiteral("a")));
        EXPECT_FALSE(builder.hasMaterialGroup(QStringLiteral("b")));
        EXPECT_THAT(messages.messages(), IsEmpty());
        builder.clear();
    }
}

TEST_F(MTLLoading, LeavesExistingGroupsAlone)
{
    ModelBuilder builder({}, 0);
    InstanceData record(QStringLiteral("Mine"));
    const float shininess = 7.0f;
    record.set(QStringLiteral("Ns"), &shininess, sizeof shininess);
    builder.createMaterialGroup(QStringLiteral("a"), record, 12, 34);
    const unsigned faces[] = {5, 6};
    builder.addFacesToMaterialGroup(QStringLiteral("a"), 2, faces, QStringLiteral("object"));

    ASSERT_TRUE(loadMaterialsFromMTLFile(write("newmtl a\nNs 1\nnewmtl b\n"), builder));

    const ModelBuilder::MaterialGroup group =
        Inspector::materialGroup(builder, QStringLiteral("a"));
    EXPECT_EQ(group.instanceData.name(), QStringLiteral("Mine"));
    EXPECT_THAT(described(group.instanceData), ElementsAre("Ns 7"));
    EXPECT_EQ(group.id, 12);
    EXPECT_EQ(group.flags, 34u);
    EXPECT_EQ(group.faces->size(), 2u);
    EXPECT_EQ(group.objectName, QStringLiteral("object"));
}

TEST_F(MTLLoading, KeepsTheFirstDefinitionAmongLibraries)
{
    ModelBuilder builder({}, 0);
    const QString first = _directory.write(QStringLiteral("1.mtl"), "newmtl a\nNs 1\n");
    const QString second =
        _directory.write(QStringLiteral("2.mtl"), "newmtl a\nNs 2\nnewmtl b\nNs 3\n");
    ASSERT_TRUE(loadMaterialsFromMTLFile(first, builder));
    ASSERT_TRUE(loadMaterialsFromMTLFile(second, builder));
    const Materials expected{{"a", {"Ns 1", "d 1"}}, {"b", {"Ns 3", "d 1"}}};
    EXPECT_EQ(materialsOf(builder), expected);
    ASSERT_TRUE(loadMaterialsFromMTLFile(first, builder));
    EXPECT_EQ(materialsOf(builder), expected);
}

struct PathCase
{
    const char *name;
    const char *text;
    const char *path; ///< beside the file unless absolute
};

const PathCase PathCases[] = {
    {"beside the file", "wood.png", "wood.png"},
    {"below", "tex/wood.png", "tex/wood.png"},
    {"upwards, not cleaned", "../x/wood.png", "../x/wood.png"},
    {"a dot, not cleaned", "./wood.png", "./wood.png"},
    {"absolute", "/abs/wood.png", "/abs/wood.png"},
    {"options", "-s 2 2 1 wood.png", "-s"},
    {"comment sign", "a#b.png", "a"},
};

TEST_F(MTLLoading, ResolvesPathsBesideTheFileWithoutOpeningThem)
{
    for (const PathCase &row : PathCases) {
        for (const std::string keyword : {"map_Kd", "map_Ks", "map_Ka", "map_Ns"}) {
            SCOPED_TRACE(keyword + ", " + row.name);
            const std::string path = row.path[0] == '/' ? row.path : besideFile(row.path);
            const Materials expected{{"a", {"d 1", keyword + ' ' + path}}};
            const QByteArray text =
                "newmtl a\n" + QByteArray::fromStdString(keyword) + ' ' + row.text;
            EXPECT_EQ(loaded(text), expected);
        }
    }
}

/// The directory is made absolute and clean; links in it stay.
TEST_F(MTLLoading, ResolvesAgainstTheCleanDirectoryOfTheFile)
{
    _directory.write(QStringLiteral("sub/a.mtl"), "newmtl a\nmap_Kd x.png\n");
    const QString link = _directory.path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(_directory.path(QStringLiteral("sub")), link));
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(_directory.directory()));
    const std::string current = QDir::currentPath().toStdString();

    const std::string directory = _directory.directory().toStdString();
    const std::pair<QString, std::string> cases[] = {
        {_directory.path(QStringLiteral("sub/../sub/./a.mtl")), directory + "/sub/x.png"},
        {_directory.path(QStringLiteral("link/a.mtl")), directory + "/link/x.png"},
        {QStringLiteral("sub/a.mtl"), current + "/sub/x.png"},
        {QStringLiteral("./link/../sub/a.mtl"), current + "/sub/x.png"},
    };
    for (const auto &[fileName, path] : cases) {
        SCOPED_TRACE(fileName.toStdString());
        ModelBuilder builder({}, 0);
        EXPECT_TRUE(loadMaterialsFromMTLFile(fileName, builder));
        EXPECT_EQ(materialsOf(builder), (Materials{{"a", {"d 1", "map_Kd " + path}}}));
    }
    QDir::setCurrent(before);
}

TEST_F(MTLLoading, FailsForFilesThatCannotBeOpened)
{
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(QStringLiteral("a"), InstanceData(), -1, 0);
    const MessageCapture capture;
    EXPECT_FALSE(loadMaterialsFromMTLFile(_directory.path(QStringLiteral("none.mtl")), builder));
    EXPECT_FALSE(loadMaterialsFromMTLFile(_directory.directory(), builder));
    EXPECT_FALSE(loadMaterialsFromMTLFile(QString(), builder));
    EXPECT_THAT(capture.messages(), IsEmpty());
    EXPECT_EQ(materialsOf(builder), (Materials{{"a", {}}}));
}

/// Whatever the bytes, the file was opened.
TEST_F(MTLLoading, ReadsAnyBytes)
{
    std::uint32_t state = 20240917;
    for (int i = 0; i < 50; ++i) {
        QByteArray noise("newmtl a\nKd ");
        for (int byte = 0; byte < 500; ++byte) {
            state = state * 1664525u + 1013904223u;
            noise.append(static_cast<char>(state >> 24));
        }
        ModelBuilder builder({}, 0);
        EXPECT_TRUE(loadMaterialsFromMTLFile(write(noise), builder));
        EXPECT_TRUE(builder.hasMaterialGroup(QStringLiteral("a")));
    }
}

} // namespace
