/// \file
/// Reads an OBJ file on several threads.
#pragma once

#include "Scanning/FaceGrouping.h"
#include "Scanning/OBJGeometry.h"
#include "Scanning/OBJPiece.h"
#include "Scanning/OBJScanLimits.h"

#include <QtCore/QString>

#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

class QIODevice;

namespace Halvard::Orv {

class MaterialLibraries;
class PieceSource;
class Work;
struct PieceText;

/// One scan: pieces are scanned in any order and published in that of the file.
///
/// A piece is published when all before it are: then it is known how many values, corners and
/// faces come before it, and where in the whole its arrays belong. Copying them there needs no
/// order again. What pieces cannot know while they are scanned:
///
/// - Indices that count back from the latest value. They are kept by the piece's own values,
///   and shifted while they are copied.
/// - Whether an attribute has values before, without which faces give it no indices. Guessed by
///   the pieces scanned so far; a piece that was scanned with a wrong guess is scanned again.
/// - Which material is selected, and which ones are known. The lines that tell are kept, and
///   replayed in order on the calling thread.
/// - Whether a limit is exceeded: checked at publication.
///
/// What ends the scan is what comes first in the file.
class ParallelScan
{
public:
    ParallelScan(const QString &baseDir, const LineDecoder &decoder, MaterialLibraries &libraries,
                 OBJGeometry &geometry, const OBJScanLimits &limits, Work &work);

    OBJScanOutcome run(QIODevice &device);

    const QString &detail() const { return _detail; }

private:
    using Lock = std::unique_lock<std::mutex>;

    void readPieces(PieceSource &source, bool isCaller);
    bool publish(OBJPiece &piece, const PieceText &text, TextEnd end, bool isCaller);
    bool endsScan(const OBJPiece &piece, const PieceText &text, TextEnd end);
    void fail(OBJScanOutcome outcome, const QString &detail);
    AttributeFlags existingBefore() const;
    void queueEvents(OBJPiece &piece);
    void replayEvents();
    void replay(const MaterialEvent &event);
    void reportReading();
    void await(Lock &lock, bool isCaller, const std::function<bool()> &isReached);
    AttributeFlags guessBefore(size_t number) const;
    void noteExisting(const AttributeFlags &existing, size_t number);

    const QString _baseDir;
    const LineDecoder &_decoder;
    MaterialLibraries &_libraries;
    OBJGeometry &_geometry;
    const OBJScanLimits _limits;
    Work &_work;
    FaceGrouping _grouping;
    qint64 _fileBytes = 0;

    /// The first piece in which values of each attribute were found.
    std::array<std::atomic<size_t>, 3> _firstPieceWith;

    std::mutex _mutex;
    std::condition_variable _changed;
    /// \name Guarded by the mutex
    /// @{
    size_t _nextPiece = 0; ///< to be published
    qint64 _publishedBytes = 0;
    unsigned _copying = 0; ///< threads that write to the arrays of the geometry
    bool _isOver = false;  ///< no piece is published any more
    std::optional<OBJScanOutcome> _failure;
    QString _detail;
    std::vector<MaterialEvent> _events; ///< published, and not replayed
    /// @}
    /// \name Of the calling thread
    /// @{
    std::optional<OBJScanOutcome> _materialFailure; ///< comes before _failure in the file
    QString _materialDetail;
    /// @}
};

} // namespace Halvard::Orv
