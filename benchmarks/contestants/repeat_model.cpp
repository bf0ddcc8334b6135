// Repeats an OBJ model side by side until the file has a size.
//
//     repeat_model MODEL.obj OUT.obj BYTES [v/vt]
//
// Positions move and keep as many decimals as they have; texture coordinates and
// normals stay; indices are counted up. Materials are selected again in each copy.
// With "v/vt" the model loses its normals.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Model
{
    std::vector<std::string> lines;
    double extent = 0;
    long count[3] = {}; // v, vt, vn
};

bool starts(const std::string &line, const char *keyword)
{
    return line.rfind(keyword, 0) == 0;
}

/// A line without normals: none for a line of them, faces with what is left of their
/// corners.
std::string withoutNormals(const std::string &line)
{
    if (starts(line, "vn "))
        return {};
    if (!starts(line, "f "))
        return line;
    std::istringstream words(line.substr(2));
    std::string out = "f";
    for (std::string word; words >> word;) {
        const size_t second = word.find('/', word.find('/') + 1);
        word.erase(std::min(word.size(), second));
        if (word.back() == '/')
            word.pop_back();
        out += ' ' + word;
    }
    return out;
}

Model read(const char *fileName, bool hasNormals)
{
    Model model;
    std::ifstream file(fileName);
    double low = 1e30;
    double high = -1e30;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!hasNormals)
            line = withoutNormals(line);
        if (starts(line, "v ")) {
            ++model.count[0];
            std::istringstream words(line.substr(2));
            for (double number; words >> number;) {
                low = number < low ? number : low;
                high = number > high ? number : high;
            }
        } else if (starts(line, "vt ")) {
            ++model.count[1];
        } else if (starts(line, "vn ")) {
            ++model.count[2];
        } else if (!starts(line, "f ") && !starts(line, "usemtl") && !starts(line, "mtllib")) {
            continue;
        }
        model.lines.push_back(line);
    }
    model.extent = high - low;
    return model;
}

/// Decimals of a number without an exponent.
int decimals(const std::string &number)
{
    const size_t point = number.find('.');
    if (point == std::string::npos || number.find_first_of("eE") != std::string::npos)
        return 6;
    return static_cast<int>(number.size() - point - 1);
}

std::string moved(const std::string &line, const double *offset)
{
    std::istringstream words(line.substr(2));
    std::string out = "v";
    std::string word;
    for (int axis = 0; axis < 3 && words >> word; ++axis) {
        char text[64];
        std::snprintf(text, sizeof text, " %.*f", decimals(word),
                      std::strtod(word.c_str(), nullptr) + offset[axis]);
        out += text;
    }
    return out;
}

std::string counted(const std::string &line, long copy, const long *count)
{
    std::istringstream words(line.substr(2));
    std::string out = "f";
    for (std::string word; words >> word;) {
        out += ' ';
        int component = 0;
        const char *at = word.c_str();
        while (*at != '\0') {
            if (*at == '/') {
                out += *at++;
                ++component;
                continue;
            }
            char *end = nullptr;
            const long index = std::strtol(at, &end, 10);
            if (end == at)
                return out; // no index: leave the rest of the line
            // Negative indices count back from the copy they stand in.
            out += std::to_string(index < 0 ? index : index + copy * count[component]);
            at = end;
        }
    }
    return out;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 4)
        return 2;
    const Model model = read(argv[1], argc < 5);
    const double bytes = std::atof(argv[3]);
    FILE *out = std::fopen(argv[2], "w");
    if (!out || model.lines.empty())
        return 1;
    double written = 0;
    for (long copy = 0; written < bytes; ++copy) {
        const double offset[3] = {model.extent * static_cast<double>(copy % 16),
                                  model.extent * static_cast<double>(copy / 16 % 16),
                                  model.extent * static_cast<double>(copy / 256)};
        for (const std::string &line : model.lines) {
            if (starts(line, "mtllib") && copy > 0)
                continue;
            const std::string text = starts(line, "v ")   ? moved(line, offset)
                                     : starts(line, "f ") ? counted(line, copy, model.count)
                                                          : line;
            std::fputs(text.c_str(), out);
            std::fputc('\n', out);
            written += static_cast<double>(text.size() + 1);
        }
    }
    return std::fclose(out) == 0 ? 0 : 1;
}
