/// \file
/// The first step of a repair: what can be mended without knowing more than a line and the next.
#pragma once

#include "Reading/LineTokens.h"
#include "Reading/TextLines.h"
#include "Repairs/RepairLog.h"

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>

#include <memory>
#include <vector>

namespace Halvard::Orv::Checking {

/// The text of a file, read through these repairs:
///
/// * UTF-16 and UTF-32 become UTF-8;
/// * carriage returns inside a line become line feeds;
/// * continued lines are joined, in libraries those of numbers;
/// * decimal commas become points.
///
/// All further steps read this text, so that they meet none of these faults. The bytes of a file
/// that has none come out as they are, its byte-order mark included.
class MendedText : public QIODevice
{
public:
    enum class Format
    {
        OBJ,
        MTL
    };

    struct Wishes
    {
        Format format;
        bool mendsReturns; ///< Otherwise carriage returns stay what they are for the loader.
    };

    /// \param source open for reading, at its begin; not owned.
    /// \param log takes the changes; null where they have been told before.
    /// \param file its number in the log.
    MendedText(QIODevice &source, const Wishes &wishes, RepairLog *log, int file);
    ~MendedText() override;

    bool isSequential() const override { return true; }

    /// Number of the source's line in which a line of the text begins.
    qint64 sourceLine(qint64 line) const;
    /// Whether a change was made so far.
    bool isChanged() const { return _isChanged; }
    /// Whether reading ended at a line that is too long.
    bool lineTooLong() const { return _lines->lineTooLong(); }
    /// Bytes of the source that are read so far.
    qint64 bytesRead() const { return _lines->bytesRead(); }

protected:
    qint64 readData(char *to, qint64 size) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    bool produce();
    void begin();
    void takeLine(const TextLine &line);
    void takePieces(const TextLine &line);
    void takePiece(const TextLine &piece);
    void finishLine(const TextLine &line);
    bool isContinuable(const TextLine &line);
    bool startsLine(const TextLine &line);
    bool mendCommas(const TextLine &line);
    int numberCount();
    void tell(Code code, qint64 line, const QString &subject, const char *message);

    const Wishes _wishes;
    RepairLog *const _log;
    const int _file;
    std::unique_ptr<TextLines> _lines;
    LineTokens _tokens;
    QByteArray _ready; // bytes to hand out, from _readyBegin on
    qint64 _readyBegin = 0;
    bool _hasBegun = false;
    bool _isChanged = false;

    QByteArray _joined;       // the line being joined, up to its last backslash
    QByteArray _joinedEnding; // of the line of that backslash
    qint64 _joinedLine = 0;
    bool _isJoining = false;
    qint64 _sourceLine = 0; // of the piece being taken
    qint64 _line = 0;       // lines handed out
    struct Shift
    {
        qint64 line;       // from this line on
        qint64 sourceLine; // which begins there
    };
    std::vector<Shift> _shifts;
};

} // namespace Halvard::Orv::Checking
