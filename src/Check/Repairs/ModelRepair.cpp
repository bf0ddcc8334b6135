#include <OrvCheck/ModelRepair.h>

#include "Repairs/LibraryPlan.h"
#include "Repairs/OBJRewrite.h"
#include "Repairs/OutputFiles.h"

#include <OrvCheck/ModelCheck.h>

#include <Libraries/InputFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <memory>
#include <vector>

namespace Halvard::Orv {

namespace {

using namespace Checking;

/// How the work ends where it ends early.
struct Ending
{
    RepairStatus status;
    QString reason;
};

Ending unreadable(const QString &reason)
{
    return {RepairStatus::Unreadable, reason};
}

/// The fraction done of several passes over the file.
class Progress
{
public:
    Progress(const RepairOptions &options, qint64 fileBytes)
        : _options(options), _fileBytes(std::max<qint64>(fileBytes, 1))
    {}

    void beginPass(int pass) { _pass = pass; }

    /// \return false when the work is to stop.
    bool reach(double fraction)
    {
        if (_options.progress && !_isStopped)
            _isStopped = !_options.progress((_pass + std::min(fraction, 1.0)) / Passes);
        return !_isStopped;
    }
    bool reachByte(qint64 byte) { return reach(double(byte) / double(_fileBytes)); }

    /// \throws Ending when the work is to stop.
    void endPass() const
    {
        if (_isStopped)
            throw Ending{RepairStatus::Stopped, {}};
    }

private:
    static constexpr int Passes = 4;

    const RepairOptions &_options;
    const qint64 _fileBytes;
    int _pass = 0;
    bool _isStopped = false;
};

/// The model read through the first repairs, from its begin to its end.
class Pass : public MendedText
{
public:
    Pass(QFile &file, bool mendsReturns, RepairLog *log, int number, Progress &progress)
        : MendedText(file, {Format::OBJ, mendsReturns}, log, number), _progress(progress)
    {}

protected:
    qint64 readData(char *to, qint64 size) override
    {
        return _progress.reachByte(bytesRead()) ? MendedText::readData(to, size) : 0;
    }

private:
    Progress &_progress;
};

class Repair
{
public:
    Repair(const QString &fileName, const QString &outputName, const RepairOptions &options)
        : _fileName(fileName), _outputName(outputName), _options(options),
          _progress(options, fileName.contains(QChar::Null) ? 0 : QFileInfo(fileName).size()),
          _number(_log.file(fileName))
    {}

    /// \throws Ending
    RepairResult run();

private:
    void check();
    void refuseInputs(const LibraryPlan *plan) const;
    template <typename Work>
    void pass(int number, RepairLog *log, const Work &work);
    void copy(TextSink &sink);
    QSaveFile *openOutput(const QString &path);
    void finish(TextSink &sink, const QSaveFile *file);
    [[noreturn]] void failToWrite() const;
    void repair();
    void writeModel(const LibraryPlan *plan, const FaceNormals &normals);
    void writeLibraries(const LibraryPlan &plan);

    const QString _fileName;
    const QString _outputName;
    const RepairOptions &_options;
    Progress _progress;
    RepairLog _log;
    const int _number;
    bool _isFixable = false;
    bool _hasReturns = false;
    qint64 _bytes = -1; // of the file, as the first pass read it
    OBJSurvey _survey;
    OutputFiles _outputs;
    RepairResult _result;
};

RepairResult Repair::run()
{
    if (_fileName.contains(QChar::Null)) // no name for the system
        throw unreadable(QStringLiteral("no such file"));
    if (!_options.dryRun || _outputName.contains(QChar::Null)) {
        const QString obstacle = obstacleTo(_outputName);
        if (!obstacle.isEmpty())
            throw Ending{RepairStatus::Unwritable, obstacle};
    }
    check();
    if (!_options.dryRun)
        refuseInputs(nullptr);
    repair();
    _result.changes = _log.changes();
    return _result;
}

/// Asks the check whether there is anything to repair: what it calls sound stays as it is.
void Repair::check()
{
    CheckOptions options;
    options.decodeTextures = false;
    options.openLibrary = _options.openLibrary;
    options.mayLookAt = _options.mayLookAt;
    options.progress = [this](double fraction) { return _progress.reach(fraction); };
    ModelFindings findings;
    QString reason;
    const CheckStatus status = checkModel(_fileName, findings, reason, options);
    _progress.endPass();
    if (status != CheckStatus::Done)
        throw unreadable(reason);
    for (const Finding &finding : findings.findings) {
        _isFixable = _isFixable || finding.fixable;
        _hasReturns = _hasReturns || (finding.code == QLatin1String("carriage-returns") &&
                                      finding.file == findings.file);
    }
}

void Repair::refuseInputs(const LibraryPlan *plan) const
{
    if (plan ? plan->isInput(_outputName) : isSameFile(_outputName, _fileName))
        throw Ending{
            RepairStatus::Unwritable,
            QStringLiteral("cannot write '%1': it is a file of the input").arg(_outputName)};
}

/// Has work done on all lines of the model, as the first repairs leave them.
template <typename Work>
void Repair::pass(int number, RepairLog *log, const Work &work)
{
    QFile file(_fileName);
    if (!openInputFile(file))
        throw unreadable(QStringLiteral("it cannot be read again"));
    _progress.beginPass(number);
    Pass text(file, _hasReturns, log, _number, _progress);
    OBJLines lines(text);
    work(lines, text);
    _progress.endPass();
    if (text.lineTooLong() || lines.text().lineTooLong())
        throw unreadable(QStringLiteral("a line of it has more than 2^30 characters"));
    if (file.error() != QFileDevice::NoError)
        throw unreadable(file.errorString());
    if (_bytes >= 0 && _bytes != text.bytesRead())
        throw unreadable(QStringLiteral("it changed while it was read"));
    _bytes = text.bytesRead();
}

/// Writes the bytes of the model as they are.
void Repair::copy(TextSink &sink)
{
    constexpr qint64 BlockBytes = qint64(1) << 18;
    QFile file(_fileName);
    if (!openInputFile(file))
        throw unreadable(QStringLiteral("it cannot be read again"));
    file.setTextModeEnabled(false);
    std::vector<char> block(static_cast<size_t>(BlockBytes));
    for (;;) {
        const qint64 count = file.read(block.data(), BlockBytes);
        if (count < 0)
            throw unreadable(file.errorString());
        if (count == 0)
            break;
        sink.write(block.data(), static_cast<size_t>(count));
        if (!_progress.reachByte(file.pos()))
            break;
    }
    _progress.endPass();
}

void Repair::failToWrite() const
{
    throw Ending{RepairStatus::Unwritable, _outputs.reason()};
}

/// \return null in a dry run.
QSaveFile *Repair::openOutput(const QString &path)
{
    _result.written.append(path);
    if (_options.dryRun)
        return nullptr;
    QSaveFile *const file = _outputs.open(path);
    if (!file)
        failToWrite();
    return file;
}

/// Hands on the last of what is written.
void Repair::finish(TextSink &sink, const QSaveFile *file)
{
    if (sink.flush())
        return;
    _outputs.fail(*file);
    failToWrite();
}

void Repair::repair()
{
    FaceNormals normals(_survey);
    const bool staysInPlace =
        isSameFile(QFileInfo(_fileName).absolutePath(), QFileInfo(_outputName).absolutePath());
    // A file that is there might be a library of the model: only a survey tells.
    const bool isPlainCopy = !_isFixable && staysInPlace && !QFileInfo::exists(_outputName);
    std::unique_ptr<LibraryPlan> plan;
    if (!isPlainCopy) {
        pass(1, &_log, [&](OBJLines &lines, const MendedText &text) {
            _survey.read(lines);
            plan = std::make_unique<LibraryPlan>(_fileName, _outputName, _survey, text, _options,
                                                 _log, _number);
            plan->make();
        });
        if (!_options.dryRun)
            refuseInputs(plan.get());
        if (_survey.vn.isIncomplete())
            pass(2, nullptr,
                 [&normals](OBJLines &lines, const MendedText &) { normals.read(lines); });
    }
    writeModel(plan.get(), normals);
    if (plan)
        writeLibraries(*plan);
    if (!_options.dryRun && !_outputs.commit())
        failToWrite();
}

/// \param plan null where the model is to be copied.
void Repair::writeModel(const LibraryPlan *plan, const FaceNormals &normals)
{
    QSaveFile *const file = openOutput(_outputName);
    TextSink sink(file);
    const bool namesStay =
        !plan || (plan->lines().rewrites.isEmpty() && plan->lines().early.isEmpty());
    if (!_isFixable && namesStay)
        copy(sink);
    else
        pass(3, nullptr, [&](OBJLines &lines, const MendedText &text) {
            OBJRewrite rewrite(_survey, normals, *plan, _log, _number, sink);
            rewrite.write(lines, text);
        });
    finish(sink, file);
}

void Repair::writeLibraries(const LibraryPlan &plan)
{
    for (const LibraryPlan::Output &output : plan.outputs()) {
        const QString directory = QFileInfo(output.path).absolutePath();
        if (!_options.dryRun && !QDir().mkpath(directory))
            throw Ending{RepairStatus::Unwritable,
                         QStringLiteral("cannot make the directory '%1'").arg(directory)};
        QSaveFile *const file = openOutput(output.path);
        TextSink sink(file);
        sink.write(output.text.data(), output.text.size());
        finish(sink, file);
    }
}

} // namespace

RepairStatus repairModel(const QString &fileName, const QString &outputName, RepairResult &result,
                         QString &reason, const RepairOptions &options)
{
    try {
        Repair repair(fileName, outputName, options);
        result = repair.run();
        return RepairStatus::Done;
    } catch (const Ending &ending) {
        if (ending.status != RepairStatus::Stopped)
            reason = ending.reason;
        return ending.status;
    } catch (const LibraryUnreadable &library) {
        reason = QStringLiteral("its library '%1' cannot be read to its end").arg(library.shown);
        return RepairStatus::Unreadable;
    }
}

} // namespace Halvard::Orv
