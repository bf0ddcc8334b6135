#include "Scanning/ParallelScanning.h"

#include "Libraries/MaterialLibraries.h"
#include "Pieces/DeviceReading.h"
#include "Pieces/PieceSource.h"
#include "Threads/Work.h"

#include <QtCore/QIODevice>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace Halvard::Orv {

namespace {

using Outcome = OBJScanOutcome;

/// Pieces that each thread should get of a file: large pieces of a small file would leave some
/// without.
constexpr qint64 PiecesPerThread = 4;
constexpr size_t SmallestPiece = size_t(1) << 16;

size_t pieceBytes(const OBJScanLimits &limits, qint64 fileBytes, unsigned threads)
{
    const auto share = static_cast<size_t>(fileBytes / (PiecesPerThread * qint64(threads)));
    return std::min(limits.pieceBytes, std::max(share, SmallestPiece));
}

std::unique_ptr<PieceSource> sourceOf(QIODevice &device, const OBJScanLimits &limits, Work &work)
{
    const int descriptor = descriptorOf(device);
    if (descriptor < 0)
        return std::make_unique<DeviceSource>(device, limits.pieceBytes, limits.lineBytes, work);
    const size_t bytes = pieceBytes(limits, device.size(), work.threadCount());
    return std::make_unique<FileSource>(descriptor, bytes, limits.lineBytes);
}

/// An event as it is in the whole file.
MaterialEvent moved(MaterialEvent event, const OBJGeometry &before)
{
    const FacePlace end = before.endOfFaces();
    event.place.face += end.face;
    event.place.corner += end.corner;
    event.place.large += end.large;
    event.counts = event.counts + countsOf(before);
    return event;
}

} // namespace

ParallelScan::ParallelScan(const QString &baseDir, const LineDecoder &decoder,
                           MaterialLibraries &libraries, OBJGeometry &geometry,
                           const OBJScanLimits &limits, Work &work)
    : _baseDir(baseDir), _decoder(decoder), _libraries(libraries), _geometry(geometry),
      _limits(limits), _work(work), _grouping(geometry, libraries, QStringLiteral("<default>"))
{
    for (auto &piece : _firstPieceWith)
        piece = ~size_t(0);
}

OBJScanOutcome ParallelScan::run(QIODevice &device)
{
    _fileBytes = device.isSequential() ? 0 : device.size();
    const std::unique_ptr<PieceSource> source = sourceOf(device, _limits, _work);
    _work.together(_work.threadCount() - 1, [&](bool isCaller) { readPieces(*source, isCaller); });
    replayEvents();
    if (_materialFailure) {
        _detail = _materialDetail;
        return *_materialFailure;
    }
    if (_failure)
        return *_failure;
    _grouping.startRun(_geometry.endOfFaces());
    if (device.isSequential())
        _geometry.textBytes = static_cast<size_t>(_publishedBytes);
    return Outcome::Finished;
}

/// What each thread does.
void ParallelScan::readPieces(PieceSource &source, bool isCaller)
{
    OBJPiece piece(_baseDir, _decoder);
    PieceText text;
    while (!_work.isStopping()) {
        _work.disturb();
        source.take(text, isCaller);
        if (text.kind == FilePieces::Kind::None)
            break;
        const TextEnd end = piece.scan(text.lines, guessBefore(text.number));
        noteExisting(piece.existing(), text.number);
        _work.disturb();
        if (!publish(piece, text, end, isCaller))
            break;
        if (isCaller) {
            replayEvents();
            reportReading();
        }
    }
}

/// Makes what was found part of the whole, when its turn comes.
/// \return false when the scan is over.
bool ParallelScan::publish(OBJPiece &piece, const PieceText &text, TextEnd end, bool isCaller)
{
    Lock lock(_mutex);
    await(lock, isCaller, [&] { return _isOver || _nextPiece == text.number; });
    if (_isOver)
        return false;
    if (const AttributeFlags existing = existingBefore(); piece.dependsOn(existing)) {
        lock.unlock(); // nobody else's turn comes meanwhile
        end = piece.scan(text.lines, existing);
        lock.lock();
    }
    queueEvents(piece);
    if (endsScan(piece, text, end))
        return false;
    if (!piece.fits(_geometry)) {
        await(lock, isCaller, [&] { return _isOver || _copying == 0; });
        if (_isOver)
            return false;
        piece.makeRoom(_geometry);
    }
    const PiecePlace place = piece.claim(_geometry);
    _publishedBytes += static_cast<qint64>(text.lines.byteCount());
    ++_nextPiece;
    _isOver = text.kind == FilePieces::Kind::Last;
    ++_copying;
    _changed.notify_all();
    lock.unlock();
    piece.copyTo(place);
    lock.lock();
    if (--_copying == 0)
        _changed.notify_all();
    return true;
}

/// Whether the scan ends with this piece, or in front of it: it has then failed.
bool ParallelScan::endsScan(const OBJPiece &piece, const PieceText &text, TextEnd end)
{
    const QString excess = (countsOf(_geometry) + countsOf(piece.geometry())).excess(_limits);
    if (end == TextEnd::NeedsLineReader)
        fail(Outcome::NeedsLineReader, {});
    else if (!excess.isNull())
        fail(Outcome::LimitExceeded, excess);
    else if (text.kind == FilePieces::Kind::LineTooLong)
        fail(Outcome::LimitExceeded, tooLongLine(_limits));
    return _isOver;
}

void ParallelScan::fail(OBJScanOutcome outcome, const QString &detail)
{
    _failure = outcome;
    _detail = detail;
    _isOver = true;
    _changed.notify_all();
}

AttributeFlags ParallelScan::existingBefore() const
{
    return {_geometry.positions.exists(), _geometry.normals.exists(), _geometry.texCoords.exists()};
}

/// By what has been found so far, in pieces that need not be published.
AttributeFlags ParallelScan::guessBefore(size_t number) const
{
    return {_firstPieceWith[0] < number, _firstPieceWith[1] < number, _firstPieceWith[2] < number};
}

void ParallelScan::noteExisting(const AttributeFlags &existing, size_t number)
{
    for (size_t i = 0; i < existing.size(); ++i) {
        size_t first = _firstPieceWith[i];
        while (existing[i] && number < first &&
               !_firstPieceWith[i].compare_exchange_weak(first, number)) {
        }
    }
}

void ParallelScan::queueEvents(OBJPiece &piece)
{
    for (MaterialEvent &event : piece.events())
        _events.push_back(moved(std::move(event), _geometry));
}

/// Does what the lines on materials say that are published. Called on the calling thread.
void ParallelScan::replayEvents()
{
    std::vector<MaterialEvent> events;
    {
        const Lock lock(_mutex);
        events.swap(_events);
    }
    for (const MaterialEvent &event : events) {
        if (_materialFailure)
            return;
        replay(event);
    }
    if (_materialFailure) {
        const Lock lock(_mutex);
        _isOver = true;
        _changed.notify_all();
    }
}

void ParallelScan::replay(const MaterialEvent &event)
{
    if (event.kind == MaterialEvent::Select) {
        _grouping.select(event.text, event.place);
        return;
    }
    const QString excess = event.counts.excess(_limits);
    if (!excess.isNull()) {
        _materialFailure = Outcome::LimitExceeded;
        _materialDetail = excess;
    } else if (!_libraries.load(event.text)) {
        _materialFailure = Outcome::LibraryMissing;
        _materialDetail = event.text;
    } else {
        _grouping.startRun(event.place); // the selected material may be known now
    }
}

/// Waits, and does the calling thread's duties meanwhile.
void ParallelScan::await(Lock &lock, bool isCaller, const std::function<bool()> &isReached)
{
    constexpr std::chrono::milliseconds LongestWait(10);
    while (!isReached()) {
        if (_work.isStopping())
            _isOver = true;
        _changed.wait_for(lock, LongestWait);
        if (!isCaller || isReached())
            continue;
        lock.unlock();
        replayEvents();
        reportReading();
        lock.lock();
    }
}

/// Tells how far the scan is. Called on the calling thread.
void ParallelScan::reportReading()
{
    qint64 bytes = 0;
    {
        const Lock lock(_mutex);
        bytes = _publishedBytes;
    }
    _work.report(WorkStage::Reading, readFraction(bytes, _fileBytes));
}

} // namespace Halvard::Orv
