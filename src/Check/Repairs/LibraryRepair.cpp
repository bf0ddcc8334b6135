#include "Repairs/LibraryRepair.h"

#include "Repairs/MendedText.h"

#include <Libraries/InputFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>

namespace Halvard::Orv::Checking {

namespace {

/// The default material's, in the words of a library.
constexpr char DefaultColours[] = "Ka 0 0 0\nKd 0.7 0.7 0.7\nKs 1 1 1\nNs 10\nd 1\n";

bool isMap(int type)
{
    return type >= MTLReader::LINE_MAP_KD && type <= MTLReader::LINE_MAP_NS;
}

/// Whether a keyword takes a path: also those that the loader passes over, for the sake of other
/// programs.
bool takesPath(const QString &keyword)
{
    return keyword.startsWith(QLatin1String("map_")) || keyword == QLatin1String("bump") ||
           keyword == QLatin1String("disp") || keyword == QLatin1String("decal") ||
           keyword == QLatin1String("refl") || keyword == QLatin1String("norm");
}

bool isDrivePath(const QString &path)
{
    return path.size() > 1 && path.at(0).isLetter() && path.at(1) == QLatin1Char(':');
}

/// Whether the loader reads a path whole.
bool isOneWord(const QString &path)
{
    return !path.isEmpty() && firstWord(path) == path && !path.contains(QLatin1Char('#'));
}

CheckOptions probeOptions(const RepairOptions &options)
{
    CheckOptions probe;
    probe.decodeTextures = false;
    probe.mayLookAt = options.mayLookAt;
    return probe;
}

struct Range
{
    const char *begin;
    const char *end;
};

/// What stands between the keyword and the comment of a line, without the blanks around it. The
/// comment may begin inside a word.
Range restOf(const MTLLines &lines)
{
    const LineTokens &tokens = lines.tokens();
    const char *const comment = std::find(lines.line().begin, lines.line().end, '#');
    Range range{std::min(tokens[0].end, comment), std::min(tokens[0].end, comment)};
    for (int i = 1; i < tokens.size() && tokens[i].begin < comment; ++i) {
        if (i == 1)
            range.begin = tokens[i].begin;
        range.end = std::min(tokens[i].end, comment);
    }
    return range;
}

/// The transparency of a "Tr" line as an opacity; null where it has none that could be meant.
QString opacityFor(const MTLLines &lines)
{
    constexpr int Digits = 6;
    bool ok = false;
    const float transparency = lines.rest().section(QLatin1Char(' '), 0, 0).toFloat(&ok);
    if (!ok || !(transparency > 0.0f && transparency < 1.0f))
        return {};
    const QString opacity = QString::number(1.0 - double(transparency), 'g', Digits);
    return opacity.toFloat() > 0.0f ? opacity : QString();
}

} // namespace

QString LibraryRepair::definition(const QString &name)
{
    return QLatin1String("newmtl ") + name + QLatin1Char('\n') + QLatin1String(DefaultColours);
}

LibraryRepair::LibraryRepair(const QString &path, const QString &shown,
                             const RepairOptions &options)
    : _path(path), _shown(shown), _options(options), _textures(probeOptions(options))
{}

/// \return null where it cannot be opened.
std::unique_ptr<QIODevice> LibraryRepair::open() const
{
    if (_path.contains(QChar::Null)) // no name for the system
        return nullptr;
    if (_options.openLibrary)
        return _options.openLibrary(_path);
    auto file = std::make_unique<QFile>(_path);
    if (!openInputFile(*file))
        file.reset();
    return file;
}

bool LibraryRepair::readNames()
{
    const std::unique_ptr<QIODevice> device = open();
    if (!device)
        return false;
    MendedText text(*device, {MendedText::Format::MTL, true}, nullptr, 0);
    MTLLines lines(text);
    _codec = &lines.text().codec();
    bool hasSection = false;
    bool hasOpacity = false;
    qint64 transparencyLine = 0;
    QString opacity;
    const auto closeSection = [&]() {
        if (hasSection && !hasOpacity && !opacity.isNull())
            _opacities.insert(transparencyLine, opacity);
        hasOpacity = false;
        opacity = QString();
    };
    while (lines.next()) {
        if (lines.type() == MTLReader::LINE_NEWMTL) {
            closeSection();
            hasSection = true;
            _names.append(lines.rest().simplified());
        } else if (lines.type() == MTLReader::LINE_D && lines.isRead()) {
            hasOpacity = true;
        } else if (isMap(lines.type()) && lines.isRead() && hasSection) {
            _textured.insert(_names.last());
        } else if (lines.hasContent() && lines.keyword() == QLatin1String("Tr")) {
            transparencyLine = lines.line().number;
            opacity = opacityFor(lines);
        }
    }
    closeSection();
    return true;
}

bool LibraryRepair::mend(const MaterialNames &names, const Wishes &wishes, RepairLog &log,
                         std::string &text)
{
    const std::unique_ptr<QIODevice> device = open();
    if (!device)
        throw LibraryUnreadable{_shown};
    _log = &log;
    _file = log.file(_shown);
    _directory = QFileInfo(_path).dir().absolutePath();
    _newDirectory = wishes.directory;
    _isRepaired = false;
    MendedText source(*device, {MendedText::Format::MTL, true}, &log, _file);
    MTLLines lines(source);
    TextSink sink(text);
    text.clear();
    bool isOpen = false;
    sink.write("\xEF\xBB\xBF", static_cast<size_t>(lines.text().markBytes()));
    while (lines.next()) {
        isOpen = lines.line().isOpen();
        _line = source.sourceLine(lines.line().number);
        _edits.clear();
        if (lines.type() == MTLReader::LINE_NEWMTL)
            mendName(lines, names);
        else if (isMap(lines.type()) && lines.isRead())
            mendTexture(lines);
        else if (lines.hasContent() && takesPath(lines.keyword()))
            moveTexture(lines);
        else if (_opacities.contains(lines.line().number))
            mendTransparency(lines);
        _edits.write(lines.line().begin, lines.line().next, sink);
    }
    const auto *const file = qobject_cast<const QFileDevice *>(device.get());
    const bool hasFailed = file && file->error() != QFileDevice::NoError;
    if (source.lineTooLong() || lines.text().lineTooLong() || hasFailed)
        throw LibraryUnreadable{_shown};
    if (isOpen && !wishes.definitions.isEmpty())
        sink.write("\n");
    const QTextCodec &codec = lines.text().codec();
    for (const QString &name : wishes.definitions)
        sink.write(codec.fromUnicode(definition(name)));
    return _isRepaired || source.isChanged() || !wishes.definitions.isEmpty();
}

void LibraryRepair::tell(Code code, const QString &subject, const QString &message)
{
    _isRepaired = true;
    _log->add(code, _file, _line, subject, message);
}

void LibraryRepair::replaceRest(const MTLLines &lines, const QString &text)
{
    const Range rest = restOf(lines);
    QByteArray bytes = lines.text().codec().fromUnicode(text);
    if (rest.begin == rest.end)
        bytes.prepend(' ');
    _edits.replace(rest.begin, rest.end, bytes);
}

void LibraryRepair::mendName(const MTLLines &lines, const MaterialNames &names)
{
    const QString written = lines.rest().simplified();
    const QString name = names.ofDefinition(written);
    if (name == written)
        return;
    replaceRest(lines, name);
    if (written.isEmpty())
        tell(Code::MaterialEmptyName, {},
             QStringLiteral("The material gets the name %1.").arg(quoted(name)));
    else
        tell(Code::NameCutAtBlank, written,
             QStringLiteral("The material %1 is renamed %2.").arg(quoted(written), quoted(name)));
}

/// Puts the path right that the loader reads, and leads it to another directory.
void LibraryRepair::mendTexture(const MTLLines &lines)
{
    const QString rest = lines.rest();
    QString path = rest;
    TextureState state = _textures.look(_directory, lines.word(), rest);
    if (state.trouble == TextureTrouble::Options) {
        path = withoutMapOptions(rest.simplified());
        tell(Code::TextureOptions, rest, QStringLiteral("The options of the texture are removed."));
        if (path.isEmpty()) { // without a path nothing is left to read
            _edits.replace(lines.line().begin, lines.line().begin, "# ");
            return;
        }
        state = _textures.look(_directory, firstWord(path), path);
    }
    const bool isBackslash = state.trouble == TextureTrouble::Backslash;
    if ((isBackslash || state.trouble == TextureTrouble::OtherCase) && isOneWord(state.found)) {
        tell(isBackslash ? Code::TexturePathBackslash : Code::TexturePathCase, rest,
             QStringLiteral("The texture %1 becomes %2.").arg(quoted(path), quoted(state.found)));
        path = state.found;
    }
    if (!_newDirectory.isNull() && QDir::isRelativePath(path) && !isDrivePath(path)) {
        // What follows the first word is not read, and goes on not being read.
        const QString word = firstWord(path);
        const QString absolute = QDir::cleanPath(QDir(_directory).absoluteFilePath(word));
        path = QDir(_newDirectory).relativeFilePath(absolute) + path.mid(word.size());
    }
    if (path != rest)
        replaceRest(lines, path);
}

/// Leads a path that the loader does not read to another directory.
void LibraryRepair::moveTexture(const MTLLines &lines)
{
    const QString rest = lines.rest().simplified();
    QString path = withoutMapOptions(rest);
    if (_newDirectory.isNull() || path.isEmpty() || isDrivePath(path) || !rest.endsWith(path))
        return;
    const QString options = rest.left(rest.size() - path.size());
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (!QDir::isRelativePath(path))
        return;
    const QString absolute = QDir::cleanPath(QDir(_directory).absoluteFilePath(path));
    replaceRest(lines, options + QDir(_newDirectory).relativeFilePath(absolute));
}

void LibraryRepair::mendTransparency(const MTLLines &lines)
{
    const QString opacity = _opacities.value(lines.line().number);
    const Token &keyword = lines.tokens()[0];
    const Range rest = restOf(lines);
    _edits.replace(keyword.begin, keyword.end, "d");
    _edits.replace(rest.begin, std::min(lines.tokens()[1].end, rest.end), opacity.toLatin1());
    tell(Code::OpacityInverted, {},
         QStringLiteral("%1 becomes %2.")
             .arg(quoted(QLatin1String("Tr ") + lines.rest()),
                  quoted(QLatin1String("d ") + opacity)));
}

} // namespace Halvard::Orv::Checking
