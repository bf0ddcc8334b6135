#include "OBJCheck.h"

#include <Scanning/OBJScanLimits.h>
#include <SimilarFiles.h>

#include <QtCore/QFileInfo>
#include <QtCore/QSet>

#include <algorithm>

namespace Halvard::Orv::Checking {

namespace {

/// Number of values of a line: its tokens behind the keyword, up to a comment.
int valueCount(const LineTokens &tokens)
{
    int count = 0;
    while (count + 1 < tokens.size() && !tokens[count + 1].startsWith('#'))
        ++count;
    return count;
}

QString keywordOf(OBJLineKind kind)
{
    switch (kind) {
    case OBJLineKind::Position:
        return QStringLiteral("v");
    case OBJLineKind::Normal:
        return QStringLiteral("vn");
    case OBJLineKind::TexCoord:
        return QStringLiteral("vt");
    default:
        return QStringLiteral("f");
    }
}

/// The text from token 1 up to a comment.
QString textBehindKeyword(const LineTokens &tokens)
{
    const int count = valueCount(tokens);
    return count == 0 ? QString() : tokens.decoded(tokens[1].begin, tokens[count].end);
}

/// Keywords without a consequence for what is drawn.
bool isHarmless(const LineTokens &tokens)
{
    return tokens.is(0, "g") || tokens.is(0, "o") || tokens.is(0, "s") || tokens.is(0, "mg") ||
           tokens.is(0, "end");
}

/// What the format knows beside the six keywords that the loader reads.
bool isOfTheFormat(const QString &keyword)
{
    static const QSet<QString> known = [] {
        QSet<QString> words;
        for (const char *word :
             {"vp",        "deg",      "bmat",     "step", "cstype", "p",      "l",
              "curv",      "curv2",    "surf",     "parm", "trim",   "hole",   "scrv",
              "sp",        "end",      "con",      "g",    "s",      "mg",     "o",
              "bevel",     "c_interp", "d_interp", "lod",  "usemap", "maplib", "shadow_obj",
              "trace_obj", "ctech",    "stech",    "call", "csh",    "bsp",    "bzp",
              "cdc",       "cdp",      "res",      "fo"})
            words.insert(QString::fromLatin1(word));
        return words;
    }();
    return known.contains(keyword);
}

} // namespace

OBJCheck::OBJCheck(const QString &fileName, const CheckOptions &options)
    : _fileName(fileName), _directory(QFileInfo(fileName).dir().absolutePath()), _options(options),
      _findings(fileName), _names(_findings, _materials),
      _libraries(_findings, _materials, _names, _options), _faces(_findings, _materials),
      _material(_materials.number(QStringLiteral("<default>")))
{}

bool OBJCheck::takeLine(OBJLines &lines)
{
    const qint64 line = lines.line().number;
    if (line == 1)
        checkFirstLine(lines);
    float values[3] = {0.0f, 0.0f, 0.0f};
    switch (lines.kind()) {
    case OBJLineKind::Nothing:
        checkReturns(lines);
        return true;
    case OBJLineKind::Position:
        takeValues(lines, 3, values);
        _faces.addPosition(values, line);
        break;
    case OBJLineKind::Normal:
        takeValues(lines, 3, values);
        _faces.addNormal(values, line);
        break;
    case OBJLineKind::TexCoord:
        takeValues(lines, 2, values);
        _faces.addTexCoord(line);
        break;
    case OBJLineKind::Face:
        takeFace(lines);
        break;
    case OBJLineKind::Library:
        takeLibrary(lines);
        break;
    case OBJLineKind::Material:
        takeMaterial(lines);
        break;
    case OBJLineKind::Other:
        takeOther(lines);
        return true;
    }
    ++_knownLines;
    return isWithinLimits(line);
}

void OBJCheck::takeTooLongLine(qint64 line)
{
    Tally &tally = _findings.at(Code::LimitExceeded);
    tally.add(line);
    tally.detail = QStringLiteral("a line of more than 2^30 characters");
    if (!_failure)
        _failure = &tally;
}

bool OBJCheck::isWithinLimits(qint64 line)
{
    OBJCounts counts;
    counts.positions = 3 * static_cast<quint64>(_faces.positions());
    counts.normals = 3 * static_cast<quint64>(_faces.normals());
    counts.texCoords = 2 * static_cast<quint64>(_faces.texCoords());
    counts.corners = static_cast<quint64>(_faces.corners());
    counts.faces = static_cast<quint64>(_faces.faces());
    const OBJScanLimits limits;
    if (counts.positions <= limits.streamElements && counts.normals <= limits.streamElements &&
        counts.texCoords <= limits.streamElements && counts.corners <= limits.corners() &&
        counts.faces <= limits.streamElements)
        return true;
    Tally &tally = _findings.at(Code::LimitExceeded);
    tally.add(line);
    tally.detail = QStringLiteral("more values, corners or faces than a stream holds");
    if (!_failure)
        _failure = &tally;
    return false;
}

/// Tells of a carriage return with text behind it.
void OBJCheck::checkReturns(const OBJLines &lines)
{
    if (lines.line().hasInnerReturn())
        _findings.at(Code::CarriageReturns).add(lines.line().number);
}

/// Tells of the encoding: UTF-16 without a mark is bytes of ASCII with zeros between them.
void OBJCheck::checkFirstLine(const OBJLines &lines)
{
    const QByteArray encoding = lines.text().transcodedFrom();
    if (!encoding.isNull()) {
        _findings.at(Code::Encoding, QString::fromLatin1(encoding)).add(1);
        return;
    }
    const TextLine &line = lines.line();
    const auto zeros = std::count(line.begin, line.end, '\0');
    if (line.end - line.begin >= 4 && 2 * zeros >= line.end - line.begin - 1) {
        Tally &tally = _findings.at(Code::Encoding, QStringLiteral("UTF-16"));
        tally.add(1);
        tally.severity = FindingSeverity::Error;
        tally.isFixable = false;
        tally.detail = QStringLiteral("unmarked");
    }
}

void OBJCheck::takeValues(OBJLines &lines, int wanted, float *values)
{
    if (!lines.readPlainValues(wanted, values))
        takeOddValues(lines, wanted, values);
}

/// Reads values one by one, and says what is wrong with them.
void OBJCheck::takeOddValues(OBJLines &lines, int wanted, float *values)
{
    const qint64 line = lines.line().number;
    const LineTokens &tokens = lines.tokens();
    const int count = valueCount(tokens);
    const QString keyword = keywordOf(lines.kind());
    checkReturns(lines);
    bool isTold = false;
    for (int i = 0; i < wanted; ++i) {
        const Number number = readNumber(tokens, i + 1);
        values[i] = number.value;
        const bool isLast = i + 1 >= count;
        if (number.kind == NumberKind::Finite || isTold)
            continue;
        isTold = true;
        if (lines.isContinued() && isLast) {
            Tally &tally = _findings.at(Code::LineContinued, keyword);
            tally.add(line);
            tally.severity = FindingSeverity::Warning;
        } else if (i >= count) {
            // A texture coordinate of one dimension has 0 for the second by the format, too.
            if (lines.kind() != OBJLineKind::TexCoord || count == 0)
                _findings.at(Code::ValuesMissing, keyword).add(line);
        } else {
            const Code code = number.kind == NumberKind::NotFinite      ? Code::NumberNotFinite
                              : number.kind == NumberKind::DecimalComma ? Code::NumberDecimalComma
                                                                        : Code::NumberUnreadable;
            Tally &tally = _findings.at(code, keyword);
            if (tally.add(line))
                tally.detail = tokens.text(i + 1);
        }
    }
    if (lines.kind() == OBJLineKind::Position && !isTold)
        takeExtraValues(lines, count);
}

/// A position may be followed by a weight, or by a colour.
void OBJCheck::takeExtraValues(const OBJLines &lines, int count)
{
    constexpr int Weighted = 4;
    constexpr int Coloured = 6;
    if (count >= Coloured)
        _findings.at(Code::VertexColoursIgnored).add(lines.line().number);
    else if (count == Weighted && readNumber(lines.tokens(), Weighted).value != 1.0f &&
             !lines.tokens()[Weighted].endsWith('\\'))
        _findings.at(Code::WeightIgnored).add(lines.line().number);
}

void OBJCheck::takeFace(OBJLines &lines)
{
    const qint64 line = lines.line().number;
    if (lines.readCorners()) {
        useMaterial();
        _faces.addFace(line, lines.corners(), _material);
        return;
    }
    checkReturns(lines);
    _faces.addUnreadableFace();
    Tally *tally = nullptr;
    if (lines.isContinued() && lines.tokens()[lines.badToken()].endsWith('\\')) {
        tally = &_findings.at(Code::LineContinued, keywordOf(lines.kind()));
        tally->add(line);
    } else {
        tally = &_findings.at(Code::FaceUnreadable);
        if (tally->add(line))
            tally->detail = lines.tokens().text(lines.badToken());
    }
    ++tally->faces;
}

QString OBJCheck::shownPath(const QString &name) const
{
    const QString directory = QFileInfo(_fileName).path();
    if (!QDir::isRelativePath(name) || directory == QLatin1String("."))
        return name;
    return directory.endsWith(QLatin1Char('/')) ? directory + name
                                                : directory + QLatin1Char('/') + name;
}

void OBJCheck::takeLibrary(OBJLines &lines)
{
    const qint64 line = lines.line().number;
    const QString name = lines.tokens().text(1);
    const QString path = QDir::isRelativePath(name) ? _directory.absoluteFilePath(name) : name;
    checkReturns(lines);
    if (!_libraries.read({name, path, shownPath(name), line}))
        tellMissing(name, path, line);
    takeFurtherNames(lines, name);
}

/// Only the first name of a line is read. What follows may be part of it.
void OBJCheck::takeFurtherNames(const OBJLines &lines, const QString &name)
{
    if (valueCount(lines.tokens()) < 2)
        return;
    const QString full = textBehindKeyword(lines.tokens());
    const QString path = _directory.absoluteFilePath(full);
    if (mayLookAt(path) && isRegularFile(path)) {
        Tally &tally = _findings.at(Code::NameCutAtBlank, full);
        if (tally.add(lines.line().number))
            tally.detail = name;
        return;
    }
    Tally &tally = _findings.at(Code::LibraryFurtherNames, full);
    if (tally.add(lines.line().number))
        tally.detail = name;
}

bool OBJCheck::mayLookAt(const QString &path) const
{
    return !path.contains(QChar::Null) && (!_options.mayLookAt || _options.mayLookAt(path));
}

/// The file that may have been meant by a library's path, as the model would name it; null where
/// there is none.
QString OBJCheck::similarLibrary(const QString &path) const
{
    QString found = fileOfOtherCase(path);
    if (found.isNull())
        found = fileOfOtherSuffix(path, QStringLiteral("mtl"));
    return found.isNull() ? found : _directory.relativeFilePath(found);
}

void OBJCheck::tellMissing(const QString &name, const QString &path, qint64 line)
{
    constexpr int MostSearches = 100; // each lists a directory
    Tally &tally = _findings.at(Code::LibraryMissing, name);
    const bool isName = !name.isEmpty() && !name.contains(QChar::Null);
    if (tally.add(line) && isName) {
        tally.isRefused = !mayLookAt(path);
        if (!tally.isRefused && ++_searches <= MostSearches)
            tally.detail = similarLibrary(path);
    }
    if (!_failure)
        _failure = &tally;
}

void OBJCheck::takeMaterial(OBJLines &lines)
{
    const qint64 line = lines.line().number;
    checkReturns(lines);
    const QString name = lines.tokens().text(1);
    _material = -1;
    _materialName = name;
    _materialLine = line;
    _isEarlyCounted = false;
    _isNamedWhole = valueCount(lines.tokens()) < 2;
    if (!_isNamedWhole)
        _names.addCut(name, textBehindKeyword(lines.tokens()), line, 0);
    if (name.contains(QChar::ReplacementCharacter) && lines.text().transcodedFrom().isNull()) {
        Tally &tally = _findings.at(Code::Encoding, name);
        tally.add(line);
        tally.isFixable = false; // nobody knows the letters
    }
}

/// Notes that a face uses the selected material. Materials without faces are not kept: a file may
/// name as many as it has lines.
void OBJCheck::useMaterial()
{
    if (_material < 0) {
        _material = _materials.number(_materialName);
        if (_isNamedWhole)
            _materials[_material].isNamedWhole = true;
    }
    Material &material = _materials[_material];
    if (material.isDefined || _isEarlyCounted)
        return;
    _isEarlyCounted = true;
    if (material.earlyUses++ == 0)
        material.earlyLine = _materialLine;
}

void OBJCheck::takeOther(OBJLines &lines)
{
    checkReturns(lines);
    const LineTokens &tokens = lines.tokens();
    if (lines.continuesAnother())
        return;
    const qint64 line = lines.line().number;
    if (isHarmless(tokens)) {
        ++_formatLines;
        if (_smoothingOffLine == 0 && tokens.is(0, "s") &&
            (tokens.is(1, "off") || tokens.is(1, "0")))
            _smoothingOffLine = line;
        return;
    }
    constexpr int MostKeywords = 20; // a file of something else has as many as words
    QString keyword = tokens.text(0);
    if (isOfTheFormat(keyword)) {
        ++_formatLines;
    } else {
        if (_firstUnknownLine == 0)
            _firstUnknownLine = line;
        if (!_findings.find(Code::KeywordIgnored, keyword) && ++_unknownKeywords > MostKeywords)
            keyword.clear();
    }
    Tally &tally = _findings.at(Code::KeywordIgnored, keyword);
    if (tally.add(line))
        tally.detail = isOfTheFormat(keyword) ? QStringLiteral("known") : QString();
}

void OBJCheck::finish(OBJLines &lines)
{
    _faces.finish();
    finishMaterials();
    finishContents(lines);
    finishModel();
    _libraries.finish();
    _names.finish();
}

/// Tells of faces whose material was not defined when they were read.
void OBJCheck::finishMaterials()
{
    const std::vector<Tally *> missing = _findings.all(Code::LibraryMissing);
    for (const Material &material : _materials.all()) {
        _facesDrawn += material.drawnFaces;
        if (material.drawnFaces > 0)
            _drawnMaterials.append(material.name);
        if (material.earlyUses == 0)
            continue;
        Tally *tally = nullptr;
        if (material.name.isEmpty()) {
            tally = &_findings.at(Code::MaterialEmptyName);
            tally->add(material.earlyLine, material.earlyUses);
        } else if (!missing.empty()) {
            tally = missing.front();
        } else if (material.isDefined) {
            tally = &_findings.at(Code::LibraryLate, material.library);
            tally->add(material.libraryLine);
        } else {
            tally = &_findings.at(Code::MaterialUndefined, material.name);
            tally->add(material.earlyLine, material.earlyUses);
        }
        tally->faces += material.lostFaces;
        if (tally->corners.isEmpty())
            tally->corners = material.lostCorners;
    }
    _triangles = _faces.triangles();
}

/// Tells what makes the loader draw nothing at all, and books the faces there.
void OBJCheck::finishModel()
{
    if (!_failure && _faces.faces() > 0 && _faces.positions() == 0) {
        _failure = &_findings.at(Code::NoPositions);
        _failure->add(1);
    }
    if (!_failure && _faces.hasAttributeAfterFaces())
        _failure = _findings.all(Code::AttributeAfterFaces).front();
    if (!_failure)
        return;
    _failure->faces += _facesDrawn;
    _facesDrawn = 0;
    _triangles = 0;
    _drawnMaterials.clear();
}

/// Tells of files that hold something else than a model.
void OBJCheck::finishContents(OBJLines &lines)
{
    const Tally *encoding = _findings.find(Code::Encoding, QStringLiteral("UTF-16"));
    const bool isUnmarked = encoding && !encoding->detail.isNull();
    if (_knownLines > 0 && isUnmarked)
        _findings.remove(Code::Encoding, QStringLiteral("UTF-16"));
    const bool isForeign = _knownLines + _formatLines == 0 && _firstUnknownLine > 0;
    if (isForeign) {
        for (Tally *tally : _findings.all(Code::KeywordIgnored))
            _findings.remove(tally->code, tally->subject, tally->file);
        if (!isUnmarked)
            _findings.at(Code::NotAnOBJ).add(_firstUnknownLine);
    } else if (_faces.faces() == 0) {
        if (!_findings.all(Code::CarriageReturns).empty())
            return; // they may well be behind one
        _findings.at(Code::NoFaces).add(std::max<qint64>(lines.line().number, 1));
    } else if (_faces.normals() == 0 && _smoothingOffLine > 0) {
        Tally &tally = _findings.at(Code::KeywordIgnored, QStringLiteral("s"));
        tally.add(_smoothingOffLine);
        tally.detail = QStringLiteral("smooth");
    }
}

qint64 OBJCheck::firstUnusedPosition() const
{
    // Which positions a face selects that cannot be read is not known.
    return _faces.faces() == 0 || _faces.unreadableFaces() > 0 ? -1 : _faces.firstUnusedPosition();
}

void OBJCheck::tellUnused(qint64 line)
{
    _findings.at(Code::PositionsUnused).add(line, _faces.unusedPositions());
}

ModelFindings OBJCheck::result() const
{
    ModelFindings result;
    result.file = _fileName;
    result.faces = _faces.faces();
    result.facesDrawn = _facesDrawn;
    result.triangles = _triangles;
    result.materials = _drawnMaterials;
    result.materials.sort();
    result.findings = _findings.findings();
    return result;
}

} // namespace Halvard::Orv::Checking
