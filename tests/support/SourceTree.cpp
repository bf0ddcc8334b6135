#include "support/SourceTree.h"

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace OrvTest {

bool startsWith(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

namespace {

Source readSource(std::istream &file)
{
    Source source;
    for (std::string line; std::getline(file, line); ++source.lineCount) {
        if (!startsWith(line, "#include "))
            continue;
        const std::size_t begin = line.find_first_of("<\"");
        const std::size_t end = line.find_first_of(">\"", begin + 1);
        if (begin != std::string::npos && end != std::string::npos)
            source.includes.push_back(
                {line.substr(begin + 1, end - begin - 1), line[begin] == '"'});
    }
    return source;
}

} // namespace

void readFolder(const std::string &root, const std::string &folder, Tree &tree)
{
    for (const fs::directory_entry &entry :
         fs::recursive_directory_iterator(fs::path(root) / folder)) {
        const fs::path extension = entry.path().extension();
        if (extension != ".h" && extension != ".cpp")
            continue;
        std::ifstream file(entry.path());
        tree[entry.path().lexically_relative(root).generic_string()] = readSource(file);
    }
}

} // namespace OrvTest
