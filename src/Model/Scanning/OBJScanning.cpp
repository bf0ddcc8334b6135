#include "Scanning/OBJScanning.h"

#include "Libraries/MaterialLibraries.h"
#include "Pieces/DeviceReading.h"
#include "Pieces/LineChunks.h"
#include "Pieces/RawReading.h"
#include "Scanning/FaceGrouping.h"
#include "Scanning/ParallelScanning.h"
#include "Scanning/TextScanning.h"
#include "Threads/Work.h"

#include <QtCore/QIODevice>

#include <algorithm>

namespace Halvard::Orv {

namespace {

using Outcome = OBJScanOutcome;

/// Makes room for what a file of `bytes` bytes may hold, by the length that numbers
/// have in large files. Arrays as large as theirs have pages of their own: room that is
/// not used takes no memory, while growing by moving loses large pages. Arrays of smaller
/// files share their pages, and room for one would be taken from others.
void expectValues(OBJGeometry &geometry, size_t bytes)
{
    constexpr size_t Large = size_t(20) << 20;
    if (bytes < Large)
        return;
    for (OBJAttribute *attribute : {&geometry.positions, &geometry.normals, &geometry.texCoords})
        attribute->values.tryReserve(bytes / 8);
    geometry.positions.indices.tryReserve(bytes / 6);
    geometry.normals.indices.tryReserve(bytes / 12);
    geometry.texCoords.indices.tryReserve(bytes / 12);
    geometry.cornerCounts.small.tryReserve(bytes / 12);
}

/// The scan on one thread: everything goes to its final place at once.
class Scanner : private MaterialLines
{
public:
    Scanner(const QString &baseDir, const LineDecoder &decoder, MaterialLibraries &libraries,
            OBJGeometry &geometry)
        : _libraries(libraries), _geometry(geometry),
          _grouping(geometry, libraries, QStringLiteral("<default>")),
          _text(baseDir, decoder, geometry, *this)
    {}

    Outcome scan(QIODevice &device, const OBJScanLimits &limits, Work &work)
    {
        LineChunks chunks(device, limits.chunkBytes, limits.lineBytes, &work);
        const qint64 fileBytes = device.isSequential() ? 0 : device.size();
        TextPiece piece;
        while (chunks.next(piece)) {
            const TextEnd end = _text.scan(piece);
            if (end == TextEnd::NeedsLineReader)
                return Outcome::NeedsLineReader;
            // Once a chunk is enough: a corner takes two bytes of text at least, so that one
            // chunk cannot make counts wrap that were within the limits. The limit is exceeded
            // first when a library is missing in the same chunk, since the scan stops there.
            if (exceeds(limits))
                return Outcome::LimitExceeded;
            if (end == TextEnd::LibraryMissing)
                return Outcome::LibraryMissing;
            _bytes += static_cast<qint64>(piece.byteCount());
            work.report(WorkStage::Reading, readFraction(_bytes, fileBytes));
        }
        if (chunks.lineTooLong()) {
            _detail = tooLongLine(limits);
            return Outcome::LimitExceeded;
        }
        _grouping.startRun(_geometry.endOfFaces());
        return Outcome::Finished;
    }

    const QString &detail() const { return _detail; }
    qint64 byteCount() const { return _bytes; }

private:
    void select(const QString &material) override
    {
        _grouping.select(material, _geometry.endOfFaces());
    }

    bool load(const QString &libraryPath) override
    {
        if (!_libraries.load(libraryPath)) {
            _detail = libraryPath;
            return false;
        }
        _grouping.startRun(_geometry.endOfFaces()); // the selected material may be known now
        return true;
    }

    bool exceeds(const OBJScanLimits &limits)
    {
        const QString excess = countsOf(_geometry).excess(limits);
        if (!excess.isNull())
            _detail = excess;
        return !excess.isNull();
    }

    MaterialLibraries &_libraries;
    OBJGeometry &_geometry;
    FaceGrouping _grouping;
    TextScanner _text;
    qint64 _bytes = 0;
    QString _detail;
};

/// Whether several threads are worth their start.
bool paysThreads(QIODevice &device, const OBJScanLimits &limits, const Work &work)
{
    return !work.isAlone() && (device.isSequential() || device.size() >= limits.threadsFromBytes);
}

} // namespace

OBJScanOutcome scanOBJFile(QIODevice &device, const QString &baseDir, MaterialLibraries &libraries,
                           OBJGeometry &geometry, QString &detail, const OBJScanLimits &limits,
                           Work *work)
{
    // So says a file of size 0, even if it has bytes; a stream only has none at the moment.
    if (!device.isSequential() && device.atEnd())
        return Outcome::Finished;
    const RawReading raw(device);
    LineDecoder decoder;
    const QByteArray head = firstBytes(device, LineDecoder::HeadBytes, work);
    if (!decoder.start(head.constData(), static_cast<size_t>(head.size())))
        return Outcome::NeedsLineReader;
    decoder.setStreamed(device.isSequential());
    geometry.textBytes = device.isSequential() ? 0 : static_cast<size_t>(device.size());
    expectValues(geometry, geometry.textBytes);

    Work alone;
    Work &threads = work ? *work : alone;
    if (paysThreads(device, limits, threads)) {
        ParallelScan scan(baseDir, decoder, libraries, geometry, limits, threads);
        const Outcome outcome = scan.run(device);
        detail = scan.detail();
        return outcome;
    }
    Scanner scanner(baseDir, decoder, libraries, geometry);
    const Outcome outcome = scanner.scan(device, limits, threads);
    detail = scanner.detail();
    if (device.isSequential())
        geometry.textBytes = static_cast<size_t>(scanner.byteCount());
    return outcome;
}

} // namespace Halvard::Orv
