#include "Repairs/OBJSurvey.h"

#include "Reading/Numbers.h"

namespace Halvard::Orv::Checking {

namespace {

constexpr size_t FewestCorners = 3;

void countIndex(AttributeSurvey &attribute, int index)
{
    if (index == Corner::Absent) {
        ++attribute.absent;
        return;
    }
    ++attribute.selecting;
    if (index < 0)
        attribute.hasNegativeIndex = true;
    else if (index > attribute.largestIndex)
        attribute.largestIndex = index;
}

} // namespace

int nameCount(const LineTokens &tokens)
{
    int count = 0;
    while (count + 1 < tokens.size() && !tokens[count + 1].startsWith('#'))
        ++count;
    return count;
}

QString writtenMaterial(const LineTokens &tokens)
{
    const int count = nameCount(tokens);
    return count == 0 ? tokens.text(1)
                      : tokens.decoded(tokens[1].begin, tokens[count].end).simplified();
}

void OBJSurvey::read(OBJLines &lines)
{
    while (lines.next()) {
        const TextLine &line = lines.line();
        if (line.number == 1 && line.next - line.end > 1)
            lineEnd = QByteArray(line.end, static_cast<int>(line.next - line.end));
        switch (lines.kind()) {
        case OBJLineKind::Position:
            takeValue(v, lines);
            takePosition(lines);
            break;
        case OBJLineKind::Normal:
            takeValue(vn, lines);
            break;
        case OBJLineKind::TexCoord:
            takeValue(vt, lines);
            break;
        case OBJLineKind::Face:
            takeFace(lines);
            break;
        case OBJLineKind::Library: {
            const LineTokens &tokens = lines.tokens();
            LibraryLine library{line.number, {}, {}};
            const int count = nameCount(tokens);
            for (int i = 1; i <= count; ++i)
                library.names.append(tokens.text(i));
            if (count > 0)
                library.full = tokens.decoded(tokens[1].begin, tokens[count].end);
            libraries.push_back(library);
            break;
        }
        case OBJLineKind::Material:
            takeMaterial(lines);
            break;
        case OBJLineKind::Nothing:
        case OBJLineKind::Other:
            break;
        }
    }
}

void OBJSurvey::takeValue(AttributeSurvey &attribute, const OBJLines &lines)
{
    const TextLine &line = lines.line();
    if (attribute.values++ == 0) {
        attribute.firstLine = line.number;
        attribute.firstText = QByteArray(line.begin, static_cast<int>(line.next - line.begin));
        attribute.cornersBefore = corners;
    }
    attribute.lastLine = line.number;
}

void OBJSurvey::takePosition(const OBJLines &lines)
{
    constexpr int Components = 3;
    float values[Components] = {0.0f, 0.0f, 0.0f};
    if (!lines.readPlainValues(Components, values)) {
        for (int i = 0; i < Components; ++i)
            values[i] = readNumber(lines.tokens(), i + 1).value;
    }
    positions.append(values[0], values[1], values[2]);
}

void OBJSurvey::takeFace(OBJLines &lines)
{
    if (firstMaterialLine == 0)
        firstMaterialLine = lines.line().number;
    if (!lines.readCorners())
        return;
    if (_material >= 0) {
        MaterialUse &use = materials[static_cast<size_t>(_material)];
        if (use.firstFace == 0) {
            use.firstFace = lines.line().number;
            use.firstLine = _materialLine;
        }
    }
    const std::vector<Corner> &read = lines.corners();
    corners += static_cast<qint64>(read.size());
    if (firstFace == 0 && !read.empty())
        firstFace = lines.line().number;
    if (read.size() < FewestCorners)
        return;
    for (const Corner &corner : read) {
        countIndex(vn, corner.vn);
        countIndex(vt, corner.vt);
        if (corner.vt == Corner::Absent && _material >= 0)
            materials[static_cast<size_t>(_material)].lacksTexCoords = true;
    }
}

void OBJSurvey::takeMaterial(const OBJLines &lines)
{
    if (firstMaterialLine == 0)
        firstMaterialLine = lines.line().number;
    _materialLine = lines.line().number;
    const QString written = writtenMaterial(lines.tokens());
    const auto known = _numbers.constFind(written);
    if (known != _numbers.constEnd()) {
        _material = *known;
        return;
    }
    _material = static_cast<int>(materials.size());
    _numbers.insert(written, _material);
    materials.push_back({written, _materialLine, 0, false});
}

} // namespace Halvard::Orv::Checking
