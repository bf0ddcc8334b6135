#include "LibraryCheck.h"

#include "Reading/Numbers.h"

#include <Libraries/InputFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <cmath>

namespace Halvard::Orv::Checking {

namespace {

/// Keywords that the loader passes over without a difference to the picture, or none that a
/// writer would expect of a plain viewer.
constexpr const char *HarmlessKeywords[] = {"illum", "Ni", "Tf", "sharpness", "map_aat"};

/// Number of values that a keyword takes.
int valueCount(int type)
{
    switch (type) {
    case MTLReader::LINE_KA:
    case MTLReader::LINE_KD:
    case MTLReader::LINE_KS:
        return 3;
    case MTLReader::LINE_NS:
    case MTLReader::LINE_D:
        return 1;
    default:
        return 0;
    }
}

bool isMap(int type)
{
    return type >= MTLReader::LINE_MAP_KD && type <= MTLReader::LINE_MAP_NS;
}

/// Whether all values of an ignored line are 0, so that ignoring it changes nothing.
bool isAllZero(const QString &rest)
{
    bool ok = true;
    for (const QString &word : rest.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (word.toFloat(&ok) != 0.0f || !ok)
            return false;
    }
    return true;
}

/// Whether a map line can name a path.
bool isOneWord(const QString &path)
{
    return std::none_of(path.cbegin(), path.cend(), [](QChar character) {
        return character.isSpace() || character == QLatin1Char('#');
    });
}

} // namespace

bool LibraryCheck::read(const Reference &reference)
{
    if (_read.contains(reference.path))
        return true;
    const QString canonical = reference.path.contains(QChar::Null)
                                  ? QString()
                                  : QFileInfo(reference.path).canonicalFilePath();
    if (!canonical.isEmpty() && _read.contains(canonical))
        return true;
    const std::unique_ptr<QIODevice> device = open(reference.path);
    if (!device)
        return false;
    _read.insert(reference.path);
    _read.insert(canonical);

    _reference = reference;
    _directory = QFileInfo(reference.path).dir().absolutePath();
    _file = _findings.addFile(reference.shown);
    _section = {};
    _isNameless = false;
    _continuedLine = -1;
    MTLLines lines(*device);
    if (!lines.text().transcodedFrom().isNull())
        tell(Code::Encoding, QString::fromLatin1(lines.text().transcodedFrom()), 1);
    while (lines.next()) {
        if (lines.line().hasInnerReturn()) {
            Tally &tally = _findings.at(Code::CarriageReturns, {}, _file);
            tally.add(lines.line().number);
            tally.severity = FindingSeverity::Warning; // what it costs is told of the model
        }
        if (lines.hasContent())
            takeLine(lines);
    }
    closeSection();
    return true;
}

/// \return null where the library cannot be opened.
std::unique_ptr<QIODevice> LibraryCheck::open(const QString &path) const
{
    if (path.contains(QChar::Null)) // no name for the system
        return nullptr;
    if (_options.openLibrary)
        return _options.openLibrary(path);
    auto file = std::make_unique<QFile>(path);
    if (!openInputFile(*file))
        return nullptr;
    return file;
}

/// Counts an occurrence in the library. On a section it belongs to a material.
Tally &LibraryCheck::tell(Code code, const QString &subject, qint64 line)
{
    Tally &tally = _findings.at(code, subject, _file);
    tally.add(line);
    if (_section.isOpen) {
        const std::pair<Tally *, int> entry(&tally, _materials.number(_section.name));
        if (_ofMaterials.empty() || _ofMaterials.back() != entry)
            _ofMaterials.push_back(entry);
    }
    return tally;
}

void LibraryCheck::takeLine(const MTLLines &lines)
{
    const int type = lines.type();
    if (type == MTLReader::LINE_NEWMTL) {
        openSection(lines);
        return;
    }
    if (type != MTLReader::LINE_UNKNOWN && !_section.isOpen) {
        if (!_isNameless)
            _findings.at(Code::MaterialLineOutside, lines.keyword(), _file)
                .add(lines.line().number);
        return;
    }
    if (_section.isOpen && !_section.counts)
        return; // the whole section is told once
    if (type == MTLReader::LINE_UNKNOWN)
        takeUnknown(lines);
    else if (!lines.isRead())
        takeUnread(lines);
    else if (isMap(type))
        takeMap(lines);
    else
        takeValues(lines);
}

void LibraryCheck::openSection(const MTLLines &lines)
{
    const qint64 line = lines.line().number;
    if (!lines.isRead()) { // the open section goes on
        Tally &tally = _findings.at(Code::MaterialEmptyName, {}, _file);
        tally.add(line);
        tally.severity = FindingSeverity::Warning;
        _isNameless = true;
        return;
    }
    closeSection();
    _section.isOpen = true;
    _section.name = lines.word();
    _section.line = line;
    Material &material = _materials[_materials.number(_section.name)];
    _section.counts = !material.isDefined;
    const QString full = lines.rest();
    if (full == _section.name)
        material.isNamedWhole = true;
    else
        _names.addCut(_section.name, full, line, _file);
    if (_section.name.contains(QChar::ReplacementCharacter) &&
        lines.text().transcodedFrom().isNull())
        tell(Code::Encoding, _section.name, line).isFixable = false; // nobody knows the letters
}

/// What the loader does at the next "newmtl", and at the end of the file.
void LibraryCheck::closeSection()
{
    if (!_section.isOpen)
        return;
    Material &material = _materials[_materials.number(_section.name)];
    if (!_section.counts) {
        Tally &tally = tell(Code::MaterialRedefined, _section.name, _section.line);
        const auto first = _records.constFind(_section.name);
        if (first != _records.constEnd() && *first == _section.members && tally.count == 1)
            tally.severity = FindingSeverity::Hint;
        else
            tally.severity = FindingSeverity::Warning;
        tally.detail = material.library;
    } else {
        material.isDefined = true;
        material.library = _reference.name;
        material.libraryLine = _reference.line;
        material.hasMap = _section.hasMap;
        _records.insert(_section.name, _section.members);
        if (_section.opacityLine > 0 && _section.opacity == 0.0f) {
            tell(Code::OpacityZero, _section.name, _section.opacityLine);
        } else if (_section.opacityLine == 0 && _section.transparency > 0.0f) {
            Tally &tally = tell(Code::OpacityInverted, _section.name, _section.transparencyLine);
            tally.detail = QString::number(double(_section.transparency));
            if (_section.transparency >= 1.0f) { // many mean an opacity of 1 by it
                tally.severity = FindingSeverity::Hint;
                tally.isFixable = false;
            }
        }
    }
    _section = {};
}

/// Tells of the numbers of a line that are none.
/// \return whether something was told.
bool LibraryCheck::checkNumbers(const MTLLines &lines)
{
    const QStringList words = lines.rest().simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const int count = valueCount(lines.type());
    if (isContinuedLibraryLine(lines.line(), lines.tokens(), count)) {
        tell(Code::LineContinued, lines.keyword(), lines.line().number).severity =
            FindingSeverity::Warning; // it costs no faces
        _continuedLine = lines.line().number;
        return true;
    }
    for (int i = 0; i < std::min(count, int(words.size())); ++i) {
        bool ok = false;
        const float value = words.at(i).toFloat(&ok);
        if (ok && std::isfinite(value))
            continue;
        const Code code = ok                             ? Code::NumberNotFinite
                          : hasDecimalComma(words.at(i)) ? Code::NumberDecimalComma
                                                         : Code::NumberUnreadable;
        Tally &tally = tell(code, lines.keyword(), lines.line().number);
        if (tally.line == lines.line().number)
            tally.detail = words.at(i);
        return true;
    }
    if (words.size() >= count)
        return false;
    tell(Code::ValuesMissing, lines.keyword(), lines.line().number);
    return true;
}

/// A line whose values cannot be read: the loader skips it.
void LibraryCheck::takeUnread(const MTLLines &lines)
{
    if (isMap(lines.type()))
        tell(Code::ValuesMissing, lines.keyword(), lines.line().number);
    else if (!checkNumbers(lines))
        tell(Code::NumberUnreadable, lines.keyword(), lines.line().number).detail = lines.rest();
}

void LibraryCheck::takeValues(const MTLLines &lines)
{
    _section.members[lines.keyword()] = lines.rest().simplified();
    if (lines.type() == MTLReader::LINE_D) {
        _section.opacity = lines.values()[0];
        _section.opacityLine = lines.line().number;
    }
    checkNumbers(lines);
}

void LibraryCheck::takeMap(const MTLLines &lines)
{
    _section.members[lines.keyword()] = lines.word();
    _section.hasMap = true;
    const TextureState state = _textures.look(_directory, lines.word(), lines.rest());
    const QString rest = lines.rest();
    const qint64 line = lines.line().number;
    const auto tellTexture = [&](Code code, const QString &subject) -> Tally & {
        Tally &tally = tell(code, subject, line);
        if (tally.line == line)
            tally.detail = state.found;
        return tally;
    };
    switch (state.trouble) {
    case TextureTrouble::None:
        break;
    case TextureTrouble::Missing:
        tellTexture(Code::TextureMissing, rest);
        break;
    case TextureTrouble::Undecodable:
        tellTexture(Code::TextureUndecodable, lines.word());
        break;
    case TextureTrouble::NotThirtyTwoBit: {
        Tally &tally = tellTexture(Code::TextureUndecodable, lines.word());
        tally.detail = QStringLiteral("depth");
        tally.severity = FindingSeverity::Hint;
        break;
    }
    case TextureTrouble::Backslash:
        tellTexture(Code::TexturePathBackslash, rest).isFixable = isOneWord(state.found);
        break;
    case TextureTrouble::OtherCase:
        tellTexture(Code::TexturePathCase, rest).isFixable = isOneWord(state.found);
        break;
    case TextureTrouble::Options:
        tellTexture(Code::TextureOptions, rest);
        break;
    case TextureTrouble::CutAtBlank: {
        Tally &tally = tellTexture(Code::NameCutAtBlank, rest);
        tally.detail = lines.word();
        tally.isFixable = tally.isFixable && tally.count > 1; // a material may have that name, too
        break;
    }
    }
}

void LibraryCheck::takeUnknown(const MTLLines &lines)
{
    const QString keyword = lines.keyword();
    if (_continuedLine + 1 == lines.line().number && continuesLibraryLine(lines.tokens())) {
        if (lines.tokens()[lines.tokens().size() - 1].endsWith('\\'))
            ++_continuedLine;
        return;
    }
    if (keyword == QLatin1String("Tr")) {
        bool ok = false;
        const float value = lines.rest().section(QLatin1Char(' '), 0, 0).toFloat(&ok);
        if (ok && _section.isOpen) {
            _section.transparency = value;
            _section.transparencyLine = lines.line().number;
        }
        return;
    }
    for (const char *harmless : HarmlessKeywords) {
        if (keyword == QLatin1String(harmless))
            return;
    }
    if (isAllZero(lines.rest()))
        return;
    constexpr int MostKeywords = 20; // a file of something else has as many as words
    if (_findings.find(Code::KeywordIgnored, keyword, _file) ||
        ++_unknownKeywords[_file] <= MostKeywords)
        tell(Code::KeywordIgnored, keyword, lines.line().number);
    else
        tell(Code::KeywordIgnored, {}, lines.line().number);
}

void LibraryCheck::finish()
{
    QHash<Tally *, bool> isUsed;
    for (const auto &[tally, material] : _ofMaterials) {
        const Material &entry = _materials[material];
        isUsed[tally] = isUsed.value(tally) || entry.drawnFaces + entry.lostFaces > 0;
    }
    for (auto it = isUsed.cbegin(); it != isUsed.cend(); ++it) {
        if (!it.value())
            it.key()->severity = FindingSeverity::Hint;
    }
}

} // namespace Halvard::Orv::Checking
