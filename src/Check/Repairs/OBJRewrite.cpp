#include "Repairs/OBJRewrite.h"

#include <QtCore/QTextCodec>

#include <algorithm>
#include <cstring>
#include <limits>

namespace Halvard::Orv::Checking {

namespace {

constexpr size_t FewestCorners = 3;
constexpr size_t QuadCorners = 4;

/// A file with "vn" lines that no face uses has them all become comments: normals are generated
/// then. Corners of fewer than three are no faces.
bool isUnusedNormal(const OBJSurvey &survey)
{
    return survey.vn.values > 0 && survey.vn.selecting == 0 && survey.corners > 0;
}

bool beginsLate(const AttributeSurvey &attribute)
{
    return attribute.values > 0 && attribute.cornersBefore > 0;
}

} // namespace

OBJRewrite::OBJRewrite(const OBJSurvey &survey, const FaceNormals &normals, const LibraryPlan &plan,
                       RepairLog &log, int file, TextSink &sink)
    : _survey(survey), _normals(normals), _libraries(plan.lines()),
      _wantsTexCoords(plan.wantsTexCoords()), _names(plan.names()), _log(log), _file(file),
      _sink(sink), _v{"v", survey.v, beginsLate(survey.v), false, 0},
      _vn{"vn", survey.vn, beginsLate(survey.vn) && !isUnusedNormal(survey), isUnusedNormal(survey),
          static_cast<qint64>(normals.lines().size())},
      _vt{"vt", survey.vt, beginsLate(survey.vt), false,
          survey.vt.selecting > 0 &&
                  (survey.vt.selectsNothing() || (_wantsTexCoords && survey.vt.absent > 0))
              ? 1
              : 0}
{}

void OBJRewrite::write(OBJLines &lines, const MendedText &source)
{
    _lines = &lines;
    _sink.write("\xEF\xBB\xBF", static_cast<size_t>(lines.text().markBytes()));
    while (lines.next()) {
        _number = lines.line().number;
        _sourceLine = source.sourceLine(_number);
        takeLine(lines);
    }
}

void OBJRewrite::tell(Code code, const QString &subject, const QString &message)
{
    _log.add(code, _file, _sourceLine, subject, message);
}

void OBJRewrite::takeLine(OBJLines &lines)
{
    _edits.clear();
    if (_number == _survey.firstMaterialLine || _number == _survey.firstFace)
        writeEarlyLines();
    switch (lines.kind()) {
    case OBJLineKind::Position:
        takeValue(_v);
        return;
    case OBJLineKind::Normal:
        takeValue(_vn);
        return;
    case OBJLineKind::TexCoord:
        takeValue(_vt);
        return;
    case OBJLineKind::Face:
        takeFace(lines);
        break;
    case OBJLineKind::Library:
        takeLibrary();
        return;
    case OBJLineKind::Material:
        takeMaterial();
        break;
    case OBJLineKind::Nothing:
    case OBJLineKind::Other:
        break;
    }
    writeLine();
}

void OBJRewrite::writeLine()
{
    const TextLine &line = _lines->line();
    startNewLine();
    _edits.write(line.begin, line.next, _sink);
    _isLineOpen = line.isOpen();
}

/// Ends the last line of a file that has no line feed there, once something follows it.
void OBJRewrite::startNewLine()
{
    if (_isLineOpen)
        _sink.write(_survey.lineEnd);
    _isLineOpen = false;
}

/// Writes what belongs before the first face, or before the first material is selected.
void OBJRewrite::writeEarlyLines()
{
    if (_number == _survey.firstMaterialLine) {
        for (const QString &name : _libraries.early) {
            _sink.write("mtllib ");
            _sink.write(_lines->text().codec().fromUnicode(name));
            _sink.write(_survey.lineEnd);
        }
    }
    if (_number != _survey.firstFace)
        return;
    for (const Attribute *attribute : {&_v, &_vt, &_vn}) {
        if (!attribute->isMoved)
            continue;
        const QByteArray &text = attribute->survey.firstText;
        _sink.write(text);
        if (!text.endsWith('\n'))
            _sink.write(_survey.lineEnd);
        if (attribute->survey.firstLine == attribute->survey.lastLine)
            writeAdded(*attribute);
    }
}

/// Writes the values for corners that have none. They come behind all others, so that no index
/// changes.
void OBJRewrite::writeAdded(const Attribute &attribute)
{
    if (attribute.added == 0)
        return;
    startNewLine();
    if (&attribute == &_vt) {
        _sink.write("vt 0 0");
        _sink.write(_survey.lineEnd);
        return;
    }
    for (const QByteArray &line : _normals.lines()) {
        _sink.write(line);
        _sink.write(_survey.lineEnd);
    }
}

void OBJRewrite::takeValue(const Attribute &attribute)
{
    const QString keyword = QLatin1String(attribute.keyword);
    const bool isFirst = _number == attribute.survey.firstLine;
    if (isFirst && attribute.isMoved) {
        const bool isBehindAll = attribute.survey.cornersBefore == _survey.corners;
        tell(isBehindAll ? Code::AttributeAfterFaces : Code::AttributeBeginsLate, keyword,
             QStringLiteral("The first %1 line moves before the first face.").arg(quoted(keyword)));
        if (attribute.survey.firstLine != attribute.survey.lastLine)
            return;
    } else {
        if (attribute.isUnused) {
            tell(Code::NormalsUnused, {}, QStringLiteral("The line becomes a comment."));
            _edits.replace(_lines->line().begin, _lines->line().begin, "# ");
        }
        writeLine();
    }
    const bool isMovedAlone = isFirst && attribute.isMoved;
    if (_number == attribute.survey.lastLine && !isMovedAlone)
        writeAdded(attribute);
}

void OBJRewrite::takeLibrary()
{
    const auto known = _libraries.rewrites.constFind(_number);
    if (known == _libraries.rewrites.constEnd()) {
        writeLine();
        return;
    }
    const LibraryLines::Rewrite &rewrite = *known;
    if (rewrite.isRemoved)
        return;
    const TextLine &line = _lines->line();
    if (rewrite.isComment) {
        _edits.replace(line.begin, line.begin, "# ");
        writeLine();
        return;
    }
    const LineTokens &tokens = _lines->tokens();
    const auto inFile = [this](const QString &name) {
        return _lines->text().codec().fromUnicode(name);
    };
    QByteArray names = inFile(rewrite.names.value(0));
    for (int i = 1; i < rewrite.names.size(); ++i)
        names += _survey.lineEnd + "mtllib " + inFile(rewrite.names.at(i));
    for (const QString &name : rewrite.missing)
        names += _survey.lineEnd + "# mtllib " + inFile(name);
    _edits.replace(tokens[1].begin, tokens[nameCount(tokens)].end, names);
    writeLine();
}

void OBJRewrite::takeMaterial()
{
    const LineTokens &tokens = _lines->tokens();
    const QString written = writtenMaterial(tokens);
    const QString name = _names.ofUse(written);
    if (name == written)
        return;
    const QByteArray text = _lines->text().codec().fromUnicode(name);
    if (tokens.size() < 2)
        _edits.replace(tokens[0].end, tokens[0].end, ' ' + text);
    else if (nameCount(tokens) == 0) // a comment, or a name that looks like one
        _edits.replace(tokens[1].begin, tokens[1].begin, text + ' ');
    else
        _edits.replace(tokens[1].begin, tokens[nameCount(tokens)].end, text);
    if (written.isEmpty())
        tell(Code::MaterialEmptyName, {},
             QStringLiteral("The material gets the name %1.").arg(quoted(name)));
    else if (nameCount(tokens) > 1)
        tell(Code::NameCutAtBlank, written,
             QStringLiteral("The material %1 becomes %2.").arg(quoted(written), quoted(name)));
    else
        tell(Code::MaterialUndefined, written,
             QStringLiteral("The material %1 becomes %2.").arg(quoted(written), quoted(name)));
}

/// By how much the number of values before the line has grown.
qint64 OBJRewrite::shiftAt(const Attribute &attribute) const
{
    const bool isBeforeMoved =
        attribute.isMoved && _number >= _survey.firstFace && _number < attribute.survey.firstLine;
    const bool isOnlyLineMoved =
        attribute.isMoved && attribute.survey.firstLine == attribute.survey.lastLine;
    const bool isBehindAdded =
        isOnlyLineMoved ? _number >= _survey.firstFace : _number > attribute.survey.lastLine;
    return (isBeforeMoved ? 1 : 0) + (isBehindAdded ? attribute.added : 0);
}

void OBJRewrite::takeFace(OBJLines &lines)
{
    if (!lines.readCorners())
        return;
    const std::vector<Corner> &corners = lines.corners();
    const bool isFace = corners.size() >= FewestCorners;
    const bool wantsNormals = _normals.isWanted(corners);
    const bool wantsTexCoords =
        isFace && std::any_of(corners.cbegin(), corners.cend(),
                              [this](const Corner &corner) { return wantsTexCoord(corner); });
    const bool isTurned = splitsWrongly(corners);
    const bool isShifted = shiftAt(_v) > 0 || shiftAt(_vn) > 0 || shiftAt(_vt) > 0;
    if (!wantsNormals && !wantsTexCoords && !isTurned && !isShifted)
        return;
    const int normal = wantsNormals ? _normals.number(corners) : -1;
    _corners.clear();
    for (size_t i = 0; i < corners.size(); ++i)
        _corners.push_back(rewritten(lines.tokens()[static_cast<int>(i) + 1], corners[i], normal));
    if (isTurned) {
        std::rotate(_corners.begin(), _corners.begin() + 1, _corners.end());
        tell(Code::QuadSplitWrongly, {},
             QStringLiteral("The face begins with its second corner now."));
    }
    for (size_t i = 0; i < corners.size(); ++i) {
        const Token &token = lines.tokens()[static_cast<int>(i) + 1];
        if (token.size() != static_cast<size_t>(_corners[i].size()) ||
            std::memcmp(token.begin, _corners[i].constData(), token.size()) != 0)
            _edits.replace(token.begin, token.end, _corners[i]);
    }
}

bool OBJRewrite::wantsTexCoord(const Corner &corner) const
{
    return _vt.added > 0 && !_survey.vt.has(corner.vt) &&
           (_wantsTexCoords || corner.vt != Corner::Absent);
}

/// Whether a quad's diagonal leaves it, and would not if it began with another corner. Told of
/// the positions as they will be.
bool OBJRewrite::splitsWrongly(const std::vector<Corner> &corners)
{
    if (corners.size() != QuadCorners)
        return false;
    float points[3 * (QuadCorners + 1)];
    for (size_t i = 0; i < QuadCorners; ++i) {
        if (!_survey.v.has(corners[i].v) ||
            static_cast<size_t>(corners[i].v) >= _survey.positions.count())
            return false;
        std::copy_n(_survey.positions[static_cast<size_t>(corners[i].v)], 3, points + 3 * i);
    }
    if (!_shapes.examine(QuadCorners, points).isSplitWrongly)
        return false;
    std::copy_n(points, 3, points + 3 * QuadCorners);
    return !_shapes.examine(QuadCorners, points + 3).isSplitWrongly;
}

/// The text of an index from `begin` to `end`, which selects the same value as before. One that
/// counts back too far to be led any further selects nothing, and stays.
QByteArray OBJRewrite::shifted(const Attribute &attribute, const char *begin, const char *end,
                               int index)
{
    const qint64 shift = index < 0 ? shiftAt(attribute) : 0;
    return shift == 0 || index - shift < std::numeric_limits<int>::min()
               ? QByteArray(begin, static_cast<int>(end - begin))
               : QByteArray::number(index - shift);
}

/// The text of a corner.
/// \param normal number of the one that is added for the face; -1 where there is none.
QByteArray OBJRewrite::rewritten(const Token &token, const Corner &corner, int normal)
{
    constexpr int Parts = 3;
    WrittenCorner written;
    _lines->readCorner(token, written);
    const char *parts[Parts] = {token.begin, token.end, token.end};
    const char *ends[Parts] = {token.end, token.end, token.end};
    for (int i = 0; i < Parts; ++i) {
        ends[i] = std::find(parts[i], token.end, '/');
        if (i + 1 < Parts)
            parts[i + 1] = ends[i] == token.end ? token.end : ends[i] + 1;
    }
    QByteArray v = shifted(_v, parts[0], ends[0], written.v);
    QByteArray vt = shifted(_vt, parts[1], ends[1], written.vt);
    QByteArray vn = shifted(_vn, parts[2], ends[2], written.vn);
    if (_lines->corners().size() >= FewestCorners && wantsTexCoord(corner)) {
        vt = QByteArray::number(_survey.vt.values + 1);
        tell(Code::CornerWithoutTexCoord, {},
             QStringLiteral("The corner gets the texture coordinate 0 0."));
    }
    if (normal >= 0 && !_survey.vn.has(corner.vn)) {
        vn = QByteArray::number(_survey.vn.values + 1 + normal);
        tell(Code::CornerWithoutNormal, {},
             QStringLiteral("The corner gets the normal of its face."));
    }
    const QByteArray rest(ends[Parts - 1], static_cast<int>(token.end - ends[Parts - 1]));
    if (!vn.isEmpty() || written.parts >= Parts)
        return v + '/' + vt + '/' + vn + rest;
    return vt.isEmpty() && written.parts < 2 ? v : v + '/' + vt;
}

} // namespace Halvard::Orv::Checking
