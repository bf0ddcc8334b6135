/// \file
/// The repository's sources, as far as their includes go.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace OrvTest {

struct Include
{
    std::string header;
    bool isQuoted = false;
};

struct Source
{
    std::vector<Include> includes;
    std::size_t lineCount = 0;
};

/// The sources by their paths from the repository's root.
using Tree = std::map<std::string, Source>;

bool startsWith(const std::string &text, const std::string &start);

/// Adds the sources and headers below `folder`, a path from `root`, the repository's.
void readFolder(const std::string &root, const std::string &folder, Tree &tree);

} // namespace OrvTest
