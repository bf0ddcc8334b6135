/// \file
/// Tokens of OBJ lines and what they mean, for whoever reads OBJ text.
#pragma once

#include <string>
#include <vector>

namespace OrvTest {

/// A number on a "v", "vn" or "vt" line.
struct NumberCase
{
    std::string name;
    std::string text; ///< UTF-8, without blanks
    float value;
};

const std::vector<NumberCase> &numberCases();

/// A corner on an "f" line that follows ten lines each of "v", "vt" and "vn".
struct CornerCase
{
    std::string name;
    std::string text; ///< UTF-8, without blanks
    bool ok;
    int v;
    int vt;
    int vn;
};

const std::vector<CornerCase> &cornerCases();

/// What stands for a component that is left out.
constexpr int Absent = 0x7fffffff;

/// A blank, or what might be taken for one, in UTF-8.
struct BlankCase
{
    std::string name;
    std::string text;
    bool isBlank;
};

const std::vector<BlankCase> &blankCases();

} // namespace OrvTest
