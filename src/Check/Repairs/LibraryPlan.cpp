#include "Repairs/LibraryPlan.h"

#include "Repairs/OutputFiles.h"

#include <Libraries/InputFile.h>
#include <SimilarFiles.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextCodec>

#include <algorithm>

namespace Halvard::Orv::Checking {

namespace {

const QLatin1String DefaultMaterial("<default>");
const QLatin1String Copied("library-copied");
const QLatin1String NameTaken("library-name-taken");

QDir directoryOf(const QString &fileName)
{
    return QFileInfo(fileName).dir().absolutePath();
}

bool holds(const QString &path, const std::string &text)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() != static_cast<qint64>(text.size()))
        return false;
    const QByteArray bytes = file.readAll();
    return static_cast<size_t>(bytes.size()) == text.size() &&
           std::equal(text.begin(), text.end(), bytes.begin());
}

/// The names on the "mtllib" lines of a model, each once and sorted; none where it cannot be read.
QStringList librariesNamedIn(const QString &fileName)
{
    QFile file(fileName);
    if (!isRegularFile(fileName) || !openInputFile(file))
        return {};
    QStringList names;
    OBJLines lines(file);
    while (lines.next()) {
        if (lines.kind() == OBJLineKind::Library)
            names.append(lines.tokens().text(1));
    }
    names.sort(); // removeDuplicates() hashes what strangers chose
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

/// `name` with nothing in it that would end it on a "mtllib" line.
QString asFileName(QString name)
{
    const QTextCodec &codec = *QTextCodec::codecForLocale();
    for (QChar &character : name) {
        if (character.isSpace() || character.unicode() <= ' ' || character == QLatin1Char('#') ||
            !(character.isSurrogate() || codec.canEncode(character)))
            character = QLatin1Char('_');
    }
    return name.isEmpty() ? QStringLiteral("materials") : name;
}

} // namespace

LibraryPlan::LibraryPlan(const QString &fileName, const QString &outputName,
                         const OBJSurvey &survey, const MendedText &source,
                         const RepairOptions &options, RepairLog &log, int file)
    : _fileName(fileName), _outputName(outputName), _survey(survey), _source(source),
      _options(options), _log(log), _file(file), _directory(directoryOf(fileName)),
      _outputDirectory(directoryOf(outputName)),
      _staysInPlace(isSameFile(_directory.path(), _outputDirectory.path()))
{}

void LibraryPlan::make()
{
    findLibraries();
    settleNames();
    settleMaterials();
    settleOutputs();
    settleLines();
}

void LibraryPlan::tell(Code code, qint64 line, const QString &subject, const QString &message)
{
    _log.add(code, _file, _source.sourceLine(line), subject, message);
}

bool LibraryPlan::isInput(const QString &path) const
{
    return isSameFile(path, _fileName) ||
           std::any_of(_libraries.cbegin(), _libraries.cend(), [&path](const Library &library) {
               return isSameFile(path, library.repair->path());
           });
}

QString LibraryPlan::pathOf(const QString &name) const
{
    return QDir::isRelativePath(name) ? _directory.absoluteFilePath(name) : name;
}

/// A library as findings name it.
QString LibraryPlan::shown(const QString &name) const
{
    const QString directory = QFileInfo(_fileName).path();
    if (!QDir::isRelativePath(name) || directory == QLatin1String("."))
        return name;
    return directory.endsWith(QLatin1Char('/')) ? directory + name
                                                : directory + QLatin1Char('/') + name;
}

void LibraryPlan::findLibraries()
{
    for (const LibraryLine &line : _survey.libraries)
        findOnLine(line);
}

void LibraryPlan::findOnLine(const LibraryLine &line)
{
    LibraryLines::Rewrite rewrite;
    const size_t before = _references.size();
    const bool isOneFile = line.names.size() > 1 && isThere(pathOf(line.full)) &&
                           addReference(line.line, line.full, line.full);
    if (isOneFile) {
        tell(Code::NameCutAtBlank, line.line, line.full,
             QStringLiteral("The library %1 gets a name without blanks.").arg(quoted(line.full)));
    } else {
        for (const QString &name : line.names) {
            if (addReference(line.line, name, name))
                continue;
            const QString found = meant(name);
            if (!found.isNull() && addReference(line.line, name, found)) {
                tell(Code::LibraryMissing, line.line, name,
                     QStringLiteral("The library %1 becomes %2.").arg(quoted(name), quoted(found)));
                continue;
            }
            rewrite.missing.append(name);
            if (_references.size() == before)
                tell(Code::LibraryMissing, line.line, name,
                     QStringLiteral("The library %1 %2: its name becomes a comment.")
                         .arg(quoted(name), troubleWith(name)));
        }
        if (line.names.size() > 1)
            tell(Code::LibraryFurtherNames, line.line, line.full,
                 QStringLiteral("Each library gets a line of its own."));
    }
    if (line.names.isEmpty())
        tell(Code::LibraryMissing, line.line, {},
             QStringLiteral("The line names no library, and becomes a comment."));
    rewrite.isComment = _references.size() == before;
    if (rewrite.isComment || line.names.size() > 1)
        _lines.rewrites.insert(line.line, rewrite);
}

/// Why a library is not opened.
QString LibraryPlan::troubleWith(const QString &name) const
{
    const bool isName = !name.contains(QChar::Null);
    return isName && !mayLookAt(pathOf(name)) ? QStringLiteral("lies outside of what may be read")
                                              : QStringLiteral("is not there");
}

/// \return false when there is no such library.
bool LibraryPlan::addReference(qint64 line, const QString &written, const QString &name)
{
    const QString path = pathOf(name);
    if (name.contains(QChar::Null)) // no name for the system
        return false;
    const QString canonical = QFileInfo(path).canonicalFilePath();
    auto number = _numbers.constFind(canonical);
    if (canonical.isEmpty() || number == _numbers.constEnd()) {
        auto repair = std::make_unique<LibraryRepair>(path, shown(name), _options);
        if (!repair->readNames())
            return false;
        number = _numbers.insert(canonical, static_cast<int>(_libraries.size()));
        _libraries.push_back({std::move(repair), {}, {}});
    }
    _references.push_back({line, *number, written, name, name});
    return true;
}

bool LibraryPlan::mayLookAt(const QString &path) const
{
    return !path.contains(QChar::Null) && (!_options.mayLookAt || _options.mayLookAt(path));
}

bool LibraryPlan::isThere(const QString &path) const
{
    return mayLookAt(path) && isRegularFile(path);
}

/// The library that is meant by a name that leads to none; null where none is found.
QString LibraryPlan::meant(const QString &name)
{
    constexpr int MostSearches = 100; // each lists a directory
    if (++_searches > MostSearches || name.contains(QChar::Null))
        return {};
    QString slashed = name;
    slashed.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (isThere(pathOf(slashed)))
        return slashed;
    const QLatin1String suffix("mtl");
    if (!mayLookAt(pathOf(slashed)))
        return {};
    QString found = fileOfOtherCase(pathOf(slashed));
    if (found.isNull()) {
        found = fileOfOtherSuffix(pathOf(slashed), suffix);
        if (QFileInfo(found).suffix().compare(suffix, Qt::CaseInsensitive) != 0)
            return {};
    }
    return _directory.relativeFilePath(found);
}

void LibraryPlan::settleNames()
{
    for (const Reference &reference : _references) {
        for (const QString &name :
             _libraries[static_cast<size_t>(reference.library)].repair->names())
            _names.addDefinition(name);
    }
    for (const MaterialUse &use : _survey.materials)
        _names.addUse(use.written);
    _names.settle();
    for (size_t i = 0; i < _references.size(); ++i) {
        const auto library = static_cast<size_t>(_references[i].library);
        for (const QString &written : _libraries[library].repair->names()) {
            const QString name = _names.ofDefinition(written);
            if (!_owners.contains(name))
                _owners.insert(name, static_cast<int>(i));
            if (_libraries[library].repair->textured().contains(written))
                _textured.insert(name);
        }
    }
}

/// Settles which materials have to be defined, and whether libraries have to move.
void LibraryPlan::settleMaterials()
{
    bool isLate = false;
    QStringList definitions;
    NameSet defined;
    for (const MaterialUse &use : _survey.materials) {
        const QString name = _names.ofUse(use.written);
        if (use.firstFace == 0 || name == DefaultMaterial)
            continue;
        _wantsTexCoords = _wantsTexCoords || (use.lacksTexCoords && _textured.contains(name));
        const auto owner = _owners.constFind(name);
        if (owner != _owners.constEnd()) {
            isLate = isLate || _references[static_cast<size_t>(*owner)].line > use.firstFace;
        } else if (!defined.contains(name)) {
            defined.insert(name);
            definitions.append(name);
            tell(Code::MaterialUndefined, use.firstLine, name,
                 QStringLiteral("The material %1 is defined, in the default material's colours.")
                     .arg(quoted(name)));
        }
    }
    // All that come behind the first face move, so that their order stays: of two definitions of
    // a material the first counts.
    for (const Reference &reference : _references) {
        if (isLate && reference.line > _survey.firstMaterialLine) {
            _late.insert(reference.line);
            tell(Code::LibraryLate, reference.line, reference.written,
                 QStringLiteral("The library %1 moves before the first face.")
                     .arg(quoted(reference.written)));
        }
    }
    addDefinitions(definitions);
}

/// Whether materials can be defined in the first library: it has to be read before they are used,
/// and their names have to exist in its encoding.
bool LibraryPlan::canDefineInFirst(const QStringList &names) const
{
    if (_references.empty())
        return false;
    const Reference &first = _references.front();
    const LibraryRepair &repair = *_libraries[static_cast<size_t>(first.library)].repair;
    return (first.line < _survey.firstMaterialLine || _late.contains(first.line)) &&
           std::all_of(names.cbegin(), names.cend(),
                       [&repair](const QString &name) { return repair.canWrite(name); });
}

/// Has materials defined in the first library, or in one of their own.
void LibraryPlan::addDefinitions(const QStringList &definitions)
{
    if (definitions.isEmpty())
        return;
    if (canDefineInFirst(definitions)) {
        _libraries[static_cast<size_t>(_references.front().library)].definitions = definitions;
        return;
    }
    Output output;
    constexpr int MibUTF8 = 106;
    if (QTextCodec::codecForLocale()->mibEnum() != MibUTF8)
        output.text = "\xEF\xBB\xBF"; // otherwise it is read in the locale's encoding
    for (const QString &name : definitions)
        output.text += LibraryRepair::definition(name).toStdString();
    output.path = freeOutput(output.text);
    _newLibrary = QFileInfo(output.path).fileName();
    _outputs.push_back(std::move(output));
}

void LibraryPlan::settleOutputs()
{
    for (size_t i = 0; i < _libraries.size(); ++i)
        mendLibrary(static_cast<int>(i));
}

std::string LibraryPlan::textFor(int number, const QString &path, RepairLog &log)
{
    const Library &library = _libraries[static_cast<size_t>(number)];
    const QDir from = directoryOf(library.repair->path());
    const QDir to = directoryOf(path);
    const bool moves = !isSameFile(from.path(), to.path());
    std::string text;
    library.repair->mend(_names, {moves ? to.path() : QString(), library.definitions}, log, text);
    return text;
}

/// Decides whether a library is written, and where.
void LibraryPlan::mendLibrary(int number)
{
    Library &library = _libraries[static_cast<size_t>(number)];
    const auto reference =
        std::find_if(_references.cbegin(), _references.cend(),
                     [number](const Reference &candidate) { return candidate.library == number; });
    RepairLog unused;
    std::string text;
    const bool isChanged =
        library.repair->mend(_names, {QString(), library.definitions}, unused, text);
    const bool isNamed = firstWord(reference->name) == reference->name;
    const bool moves = !_staysInPlace && QDir::isRelativePath(reference->name);
    if (!isChanged && isNamed && !moves)
        return;
    if (!(moves && isNamed && takeOwnName(number, *reference))) {
        RepairLog untold; // the text is the same under any name in the output's folder
        library.output = freeOutput(textFor(number, _outputName, untold));
    }
    Output output{library.output, textFor(number, library.output, _log)};
    _outputs.push_back(std::move(output));
    if (!isChanged)
        _log.add(Copied, _log.file(library.repair->shown()), 1, {},
                 QStringLiteral("The library is copied to %1.").arg(quoted(library.output)));
}

/// Keeps the name of a library in another folder.
/// \return false where another file has it there.
bool LibraryPlan::takeOwnName(int number, const Reference &reference)
{
    const QString name = QDir::cleanPath(reference.name);
    if (name.startsWith(QLatin1String("..")))
        return false;
    const QString path = QDir::cleanPath(_outputDirectory.absoluteFilePath(name));
    const bool isTaken = isInput(path) || isSameFile(path, _outputName) ||
                         path == QFileInfo(_outputName).absoluteFilePath() ||
                         std::any_of(_outputs.cbegin(), _outputs.cend(),
                                     [&path](const Output &output) { return output.path == path; });
    if (isTaken)
        return false;
    if (QFileInfo::exists(path)) {
        RepairLog unused;
        if (!isRegularFile(path) || !holds(path, textFor(number, path, unused)))
            return false;
    }
    _libraries[static_cast<size_t>(number)].output = path;
    return true;
}

/// A path beside the output, of its name, that is none of the inputs and no file of something else.
/// \param text what goes there.
QString LibraryPlan::freeOutput(const std::string &text)
{
    const QString base = asFileName(QFileInfo(_outputName).completeBaseName());
    QString taken;
    for (int i = 1;; ++i) {
        const QString name = i == 1 ? base : QStringLiteral("%1_%2").arg(base).arg(i);
        const QString path =
            QDir::cleanPath(_outputDirectory.absoluteFilePath(name + QLatin1String(".mtl")));
        const bool isUsed =
            isInput(path) || path == QDir::cleanPath(QFileInfo(_outputName).absoluteFilePath()) ||
            std::any_of(_outputs.cbegin(), _outputs.cend(),
                        [&path](const Output &output) { return output.path == path; });
        if (isUsed)
            continue;
        if (!isOfAnother(path, text)) {
            if (!taken.isNull())
                _log.add(NameTaken, _file, 1, taken,
                         QStringLiteral("There is another file %1: the library goes to %2.")
                             .arg(quoted(taken), quoted(QFileInfo(path).fileName())));
            return path;
        }
        if (taken.isNull())
            taken = QFileInfo(path).fileName();
    }
}

/// Whether a file is there that a library must not take the place of: all but one that holds the
/// text already, and the library of the model that the output replaces, which mostly is an older
/// output of the same repair. What is no regular file is told where it is opened.
bool LibraryPlan::isOfAnother(const QString &path, const std::string &text)
{
    if (!isRegularFile(path) || holds(path, text))
        return false;
    if (!_replaced)
        _replaced = librariesNamedIn(_outputName);
    return std::none_of(_replaced->cbegin(), _replaced->cend(), [&](const QString &name) {
        return QDir::cleanPath(_outputDirectory.absoluteFilePath(name)) == path;
    });
}

/// Settles what stands in place of the "mtllib" lines.
void LibraryPlan::settleLines()
{
    for (Reference &reference : _references) {
        const QString &output = _libraries[static_cast<size_t>(reference.library)].output;
        if (output.isNull())
            continue;
        const QString kept = QDir::cleanPath(_outputDirectory.absoluteFilePath(reference.name));
        if (kept != output || firstWord(reference.name) != reference.name)
            reference.target = _outputDirectory.relativeFilePath(output);
    }
    for (const Reference &reference : _references) {
        const auto known = _lines.rewrites.find(reference.line);
        const bool isLate = _late.contains(reference.line);
        if (isLate)
            _lines.early.append(reference.target);
        if (known == _lines.rewrites.end() && !isLate && reference.target == reference.written)
            continue;
        LibraryLines::Rewrite &rewrite = _lines.rewrites[reference.line];
        rewrite.isRemoved = isLate;
        rewrite.names.append(reference.target);
    }
    if (!_newLibrary.isNull())
        _lines.early.append(_newLibrary);
}

} // namespace Halvard::Orv::Checking
