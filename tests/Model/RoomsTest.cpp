// The rooms of src/Model: which file may include which. The tests read the includes, and a
// failure says which file to change and how.
#include "support/SourceTree.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace fs = std::filesystem;
using namespace OrvTest;

namespace {

const std::string Root = ORV_SOURCE_DIR;

struct Room
{
    const char *name;
    int floor;
};

/// A file includes from its own room and from the floors below. The folder itself, "", is the
/// top floor; the "foundation" is no folder: see Foundation.
const Room Rooms[] = {{"", 7},          {"Preparing", 6}, {"Scanning", 5},  {"Libraries", 4},
                      {"Builder", 3},   {"Triangles", 2}, {"Pieces", 2},    {"Numbers", 2},
                      {"Welding", 2},   {"Lanes", 1},     {"Materials", 1}, {"Memory", 1},
                      {"Readers", 1},   {"Reports", 1},   {"Threads", 1},   {"Files", 0},
                      {"foundation", 0}};

/// Rooms that may be missing from src/Model.
const std::set<std::string> RoomsWithoutFolder = {"", "foundation"};

/// Headers that every room may include, and that include nothing of the library.
const std::set<std::string> Foundation = {
    "include/OrvModel/OrvModelExport.h",
    // For each entry point of the library, whatever its room.
    "src/Model/Lanes/FloatingPointState.h",
};

/// An exported header belongs to the room of the source of its name, but for these.
const std::map<std::string, std::string> RoomOfExportedHeader = {
    {"PreparationReport.h", "Reports"},
    {"OpenGLTypes.h", "Builder"},
    {"VertexKey.h", "Builder"},
    // For loadMaterialsFromMTLFile(): the other loader, which is above, includes it as well.
    {"ModelLoading.h", "Libraries"},
};

/// What is wrong, a sentence each.
using Complaints = std::vector<std::string>;

const Tree &library()
{
    static const Tree tree = [] {
        Tree files;
        readFolder(Root, "include/OrvModel", files);
        readFolder(Root, "src/Model", files);
        return files;
    }();
    return tree;
}

const std::string Internal = "src/Model/";
const std::string Exported = "include/OrvModel/";

/// The first folder below src/Model; empty for a file of src/Model itself.
std::string folderOf(const std::string &path)
{
    const std::string inside = path.substr(Internal.size());
    const std::size_t slash = inside.find('/');
    return slash == std::string::npos ? std::string() : inside.substr(0, slash);
}

/// "?" when the header is exported and no source has its name.
std::string roomOf(const std::string &path, const Tree &tree)
{
    if (Foundation.count(path) != 0)
        return "foundation";
    if (startsWith(path, Internal))
        return folderOf(path);
    const std::string header = path.substr(Exported.size());
    if (const auto known = RoomOfExportedHeader.find(header); known != RoomOfExportedHeader.end())
        return known->second;
    const std::string source = fs::path(header).stem().string() + ".cpp";
    for (const auto &[other, unused] : tree) {
        if (startsWith(other, Internal) && fs::path(other).filename() == source)
            return folderOf(other);
    }
    return "?";
}

/// -1 for a room that is not in the table.
int floorOf(const std::string &room)
{
    const auto *const end = std::end(Rooms);
    const auto *const found =
        std::find_if(std::begin(Rooms), end, [&](const Room &known) { return known.name == room; });
    return found == end ? -1 : found->floor;
}

std::string described(const std::string &room)
{
    return (room.empty() ? "src/Model itself" : room) + ", floor " + std::to_string(floorOf(room));
}

/// The file of the library that is meant; empty when it is another's.
std::string target(const Include &include, const Tree &tree)
{
    const std::string exported = "include/" + include.header;
    if (!include.isQuoted)
        return tree.count(exported) != 0 ? exported : std::string();
    const std::string internal = Internal + include.header;
    return tree.count(internal) != 0 ? internal : std::string();
}

Complaints filesWithoutRoom(const Tree &tree)
{
    Complaints complaints;
    for (const auto &[path, unused] : tree) {
        const std::string room = roomOf(path, tree);
        if (floorOf(room) >= 0)
            continue;
        complaints.push_back(room == "?" ? path + " has no source of its name: add it to "
                                                  "RoomOfExportedHeader, with the room it is of"
                                         : path + " is in a room without a floor: add \"" + room +
                                               "\" to Rooms, with its floor");
    }
    return complaints;
}

Complaints includesThatPointUpwards(const Tree &tree)
{
    Complaints complaints;
    for (const auto &[path, source] : tree) {
        const std::string room = roomOf(path, tree);
        for (const Include &include : source.includes) {
            const std::string other = target(include, tree);
            if (other.empty())
                continue;
            const std::string otherRoom = roomOf(other, tree);
            if (otherRoom == room || floorOf(otherRoom) < floorOf(room))
                continue;
            complaints.push_back(
                path + " (" + described(room) + ") includes " + include.header + " (" +
                described(otherRoom) +
                "): a file includes from its own room and from the floors below. Move what it "
                "needs down, or the file up");
        }
    }
    return complaints;
}

Complaints includesNotRootedAtTheSources(const Tree &tree)
{
    Complaints complaints;
    for (const auto &[path, source] : tree) {
        for (const Include &include : source.includes) {
            const std::string text = path + " includes " + include.header;
            if (include.isQuoted && startsWith(path, Exported))
                complaints.push_back(text + " in quotes: an exported header includes exported "
                                            "headers, as <OrvModel/Name.h>");
            else if (include.isQuoted && target(include, tree).empty())
                complaints.push_back(text + ", which is no file below src/Model: write the whole "
                                            "path from there, as \"Scanning/OBJGeometry.h\"");
            else if (!include.isQuoted && tree.count(Internal + include.header) != 0)
                complaints.push_back(text + " in angle brackets: an internal header is included "
                                            "in quotes");
        }
    }
    return complaints;
}

/// Looks for circles along the includes, depth first.
class CircleSearch
{
public:
    explicit CircleSearch(const Tree &tree) : _tree(tree)
    {
        for (const auto &[path, unused] : tree)
            visit(path);
    }

    const Complaints &complaints() const { return _complaints; }

private:
    void visit(const std::string &path)
    {
        if (_done.count(path) != 0)
            return;
        const auto first = std::find(_way.begin(), _way.end(), path);
        if (first != _way.end()) {
            std::string circle;
            for (auto file = first; file != _way.end(); ++file)
                circle += *file + " includes ";
            _complaints.push_back(circle + path +
                                  ": declare forward in one of them, or move what both need to a "
                                  "third header");
            return;
        }
        _way.push_back(path);
        for (const Include &include : _tree.at(path).includes) {
            if (const std::string other = target(include, _tree); !other.empty())
                visit(other);
        }
        _way.pop_back();
        _done.insert(path);
    }

    const Tree &_tree;
    std::vector<std::string> _way;
    std::set<std::string> _done;
    Complaints _complaints;
};

Complaints circlesOfFiles(const Tree &tree)
{
    return CircleSearch(tree).complaints();
}

Complaints roomsThatAreTooLarge(const Tree &tree)
{
    std::map<std::string, std::size_t> lines;
    std::size_t all = 0;
    for (const auto &[path, source] : tree) {
        if (startsWith(path, Internal)) {
            lines[folderOf(path)] += source.lineCount;
            all += source.lineCount;
        }
    }
    Complaints complaints;
    for (const auto &[room, count] : lines) {
        if (4 * count > all)
            complaints.push_back(described(room) + " has " + std::to_string(count) + " of the " +
                                 std::to_string(all) +
                                 " lines of src/Model, more than a quarter: find the part that "
                                 "the rest needs least, and give it a room of its own");
    }
    return complaints;
}

Complaints internalIncludesOfApps(const Tree &apps, const Tree &tree)
{
    Complaints complaints;
    for (const auto &[path, source] : apps) {
        for (const Include &include : source.includes) {
            const std::string beside = fs::path(path).replace_filename(include.header).string();
            const bool isOfApps = apps.count(beside) != 0 || apps.count("apps/" + include.header);
            if (!isOfApps && tree.count(Internal + include.header) != 0)
                complaints.push_back(path + " includes " + include.header +
                                     ", which is internal to the library: use the exported "
                                     "headers, <OrvModel/Name.h>");
        }
    }
    return complaints;
}

/// An invented file: `text` is its includes, a space between them.
std::pair<const std::string, Source> file(const std::string &path, const std::string &text,
                                          std::size_t lineCount = 1)
{
    Source source;
    source.lineCount = lineCount;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        source.includes.push_back({text.substr(begin + 1, end - begin - 2), text[begin] == '"'});
        begin = end + 1;
    }
    return {path, source};
}

using testing::ElementsAre;
using testing::IsEmpty;

TEST(RoomsTest, EveryFileHasARoomWithAFloor)
{
    EXPECT_THAT(filesWithoutRoom(library()), IsEmpty());
    EXPECT_GT(library().size(), 100u); // the files have been found
}

TEST(RoomsTest, NoIncludePointsUpwards)
{
    EXPECT_THAT(includesThatPointUpwards(library()), IsEmpty());
}

TEST(RoomsTest, InternalIncludesAreRootedAtTheSources)
{
    EXPECT_THAT(includesNotRootedAtTheSources(library()), IsEmpty());
}

TEST(RoomsTest, NoFileIncludesItselfByACircle)
{
    EXPECT_THAT(circlesOfFiles(library()), IsEmpty());
}

TEST(RoomsTest, NoRoomIsLargerThanAQuarterOfAll)
{
    EXPECT_THAT(roomsThatAreTooLarge(library()), IsEmpty());
}

TEST(RoomsTest, AppsIncludeExportedHeadersOnly)
{
    Tree apps;
    readFolder(Root, "apps", apps);
    EXPECT_GT(apps.size(), 20u);
    EXPECT_THAT(internalIncludesOfApps(apps, library()), IsEmpty());
}

TEST(RoomsTest, NoExceptionIsLeftOver)
{
    for (const std::string &path : Foundation)
        EXPECT_EQ(library().count(path), 1u) << path << " is gone: take it out of Foundation";
    for (const auto &[header, room] : RoomOfExportedHeader)
        EXPECT_EQ(library().count(Exported + header), 1u)
            << header << " is gone: take it out of RoomOfExportedHeader";
}

TEST(RoomsTest, TestsHaveTheFoldersOfTheSources)
{
    const fs::path root = Root;
    for (const Room &room : Rooms) {
        const bool isThere = fs::is_directory(root / "src/Model" / room.name);
        if (RoomsWithoutFolder.count(room.name) == 0) {
            EXPECT_TRUE(isThere) << "src/Model/" << room.name << " is gone: take it out of Rooms";
        }
        if (isThere) {
            EXPECT_TRUE(fs::is_directory(root / "tests/Model" / room.name))
                << "add the folder tests/Model/" << room.name << ", and the tests of the room";
        }
    }
    for (const fs::directory_entry &entry : fs::directory_iterator(root / "tests/Model")) {
        const std::string name = entry.path().filename().string();
        if (entry.is_directory()) {
            EXPECT_TRUE(fs::is_directory(root / "src/Model" / name))
                << "tests/Model/" << name << " tests no room of src/Model: move its tests";
        }
    }
}

// What the tests above would say: the same rules on invented files.

TEST(RoomsTest, SeesIncludesThatPointUpwardsAndSideways)
{
    const Tree tree = {
        file("src/Model/Builder/Model.cpp",
             "<OrvModel/Model.h> \"Welding/Rows.h\" <QtCore/QString>"),
        file("include/OrvModel/Model.h", "<OrvModel/OrvModelExport.h> <OrvModel/Loading.h>"),
        file("include/OrvModel/OrvModelExport.h", ""),
        file("include/OrvModel/Loading.h", ""),
        file("src/Model/Loading.cpp", "\"Builder/Step.h\" <OrvModel/Loading.h>"),
        file("src/Model/Builder/Step.h", ""),
        file("src/Model/Welding/Rows.h", "\"Triangles/Ears/Ring.h\""),
        file("src/Model/Triangles/Ears/Ring.h", "\"Triangles/Plane.h\""),
        file("src/Model/Triangles/Plane.h", "\"Triangles/Ears/Ring.h\""),
    };
    const std::string rule = "): a file includes from its own room and from the floors below. "
                             "Move what it needs down, or the file up";
    EXPECT_THAT(
        includesThatPointUpwards(tree),
        ElementsAre("include/OrvModel/Model.h (Builder, floor 3) includes OrvModel/Loading.h "
                    "(src/Model itself, floor 7" +
                        rule,
                    "src/Model/Welding/Rows.h (Welding, floor 2) includes Triangles/Ears/Ring.h "
                    "(Triangles, floor 2" +
                        rule));
    EXPECT_THAT(circlesOfFiles(tree),
                ElementsAre("src/Model/Triangles/Ears/Ring.h includes src/Model/Triangles/Plane.h "
                            "includes src/Model/Triangles/Ears/Ring.h: declare forward in one of "
                            "them, or move what both need to a third header"));
}

TEST(RoomsTest, SeesFilesWithoutARoom)
{
    const Tree tree = {file("include/OrvModel/Lonely.h", ""),
                       file("src/Model/Cellar/Barrel.h", "", 3),
                       file("src/Model/Lanes/A.h", "", 1)};
    EXPECT_THAT(filesWithoutRoom(tree),
                ElementsAre("include/OrvModel/Lonely.h has no source of its name: add it to "
                            "RoomOfExportedHeader, with the room it is of",
                            "src/Model/Cellar/Barrel.h is in a room without a floor: add "
                            "\"Cellar\" to Rooms, with its floor"));
}

TEST(RoomsTest, SeesIncludesOfTheWrongForm)
{
    const Tree tree = {file("src/Model/Lanes/A.cpp", "\"A.h\" <Lanes/A.h> \"Lanes/A.h\""),
                       file("src/Model/Lanes/A.h", ""),
                       file("include/OrvModel/A.h", "\"Lanes/A.h\"")};
    EXPECT_THAT(includesNotRootedAtTheSources(tree),
                ElementsAre("include/OrvModel/A.h includes Lanes/A.h in quotes: an exported header "
                            "includes exported headers, as <OrvModel/Name.h>",
                            "src/Model/Lanes/A.cpp includes A.h, which is no file below src/Model: "
                            "write the whole path from there, as \"Scanning/OBJGeometry.h\"",
                            "src/Model/Lanes/A.cpp includes Lanes/A.h in angle brackets: an "
                            "internal header is included in quotes"));
    const Tree apps = {file("apps/orv/Main.cpp", "\"Main.h\" \"Lanes/A.h\""),
                       file("apps/orv/Main.h", "<OrvModel/A.h>")};
    EXPECT_THAT(internalIncludesOfApps(apps, tree),
                ElementsAre("apps/orv/Main.cpp includes Lanes/A.h, which is internal to the "
                            "library: use the exported headers, <OrvModel/Name.h>"));
}

TEST(RoomsTest, SeesARoomOfMoreThanAQuarter)
{
    const Tree tree = {file("src/Model/Lanes/A.h", "", 26), file("src/Model/Memory/B.h", "", 25),
                       file("src/Model/Welding/C.h", "", 24), file("src/Model/D.cpp", "", 24),
                       file("include/OrvModel/E.h", "", 100)};
    // A quarter of 26 + 25 + 24 + 24 is 24.75.
    const std::string advice = " of the 99 lines of src/Model, more than a quarter: find the part "
                               "that the rest needs least, and give it a room of its own";
    EXPECT_THAT(roomsThatAreTooLarge(tree),
                ElementsAre("Lanes, floor 1 has 26" + advice, "Memory, floor 1 has 25" + advice));
}

} // namespace
