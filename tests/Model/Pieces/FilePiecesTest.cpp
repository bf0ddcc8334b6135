// Files in pieces against the same files whole.
#include "Pieces/FilePieces.h"

#include "support/TemporaryModel.h"

#include "Pieces/DeviceReading.h"

#include <gmock/gmock.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>

#include <string>
#include <vector>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;
using ::testing::ElementsAre;
using Kind = FilePieces::Kind;

constexpr std::size_t AnyLength = 1000000;

/// A file on disk, open.
class OpenFile
{
public:
    explicit OpenFile(const QByteArray &text) : _file(_files.write(QStringLiteral("text"), text))
    {
        EXPECT_TRUE(_file.open(QIODevice::ReadOnly));
        EXPECT_GE(descriptor(), 0);
    }

    int descriptor() { return descriptorOf(_file); }

private:
    TemporaryModel _files;
    QFile _file;
};

struct Piece
{
    std::string text;
    qint64 offset;
    bool endsOpen;
    Kind kind;

    bool operator==(const Piece &other) const
    {
        return text == other.text && offset == other.offset && endsOpen == other.endsOpen &&
               kind == other.kind;
    }
    friend std::ostream &operator<<(std::ostream &out, const Piece &piece)
    {
        return out << '"' << piece.text << "\" at " << piece.offset
                   << (piece.endsOpen ? " open" : "") << " kind " << static_cast<int>(piece.kind);
    }
};

std::vector<Piece> piecesOf(const QByteArray &text, std::size_t bytes,
                            std::size_t maxLineBytes = AnyLength)
{
    OpenFile file(text);
    const FilePieces pieces(file.descriptor(), bytes, maxLineBytes);
    std::vector<Piece> all;
    TextPiece piece;
    for (std::size_t number = 0; number < 100; ++number) {
        const Kind kind = pieces.read(number, piece);
        if (kind == Kind::None)
            break;
        all.push_back(
            {std::string(piece.begin(), piece.end()), piece.offset(), piece.endsOpen(), kind});
        if (kind != Kind::Inner)
            break;
    }
    return all;
}

TEST(FilePieces, HoldTheLinesThatBeginInThem)
{
    //                   0 1  2 3 4  5 6 7  8 9
    EXPECT_THAT(piecesOf("ab\ncd\nefg\n\n", 4),
                ElementsAre(Piece{"ab\ncd\n", 0, false, Kind::Inner},
                            Piece{"efg\n", 6, false, Kind::Inner},
                            Piece{"\n", 10, false, Kind::Last}));
}

TEST(FilePieces, MayBeginNoLine)
{
    EXPECT_THAT(piecesOf("a234567890\nb\n", 4),
                ElementsAre(Piece{"a234567890\n", 0, false, Kind::Inner},
                            Piece{"", 8, false, Kind::Inner}, Piece{"b\n", 11, false, Kind::Inner},
                            Piece{"", 13, false, Kind::Last}));
}

TEST(FilePieces, EndTheLastLineOfAFile)
{
    EXPECT_THAT(piecesOf("ab\ncd", 3), ElementsAre(Piece{"ab\n", 0, false, Kind::Inner},
                                                   Piece{"cd\n", 3, true, Kind::Last}));
    EXPECT_THAT(piecesOf("", 3), ElementsAre());
}

TEST(FilePieces, EndBeforeALineThatIsTooLong)
{
    const std::vector<Piece> pieces = piecesOf("a\n" + QByteArray(5000, 'b') + "\n", 10, 100);
    EXPECT_THAT(pieces, ElementsAre(Piece{"a\n", 0, false, Kind::LineTooLong}));
}

TEST(FilePieces, AreTheWholeFileForAnySize)
{
    QByteArray text;
    for (int line = 0; line < 40; ++line)
        text += QByteArray(line * 7 % 23, 'x') + '\n';
    for (const QByteArray &end : {QByteArray(), QByteArray("end")}) {
        for (std::size_t bytes = 6; bytes < 700; bytes += bytes < 30 ? 1 : 37) {
            std::string whole;
            for (const Piece &piece : piecesOf(text + end, bytes)) {
                if (!piece.text.empty()) {
                    EXPECT_EQ(piece.offset, static_cast<qint64>(whole.size()));
                }
                whole += piece.text;
            }
            EXPECT_EQ(whole, (text + (end.isEmpty() ? end : end + '\n')).toStdString()) << bytes;
        }
    }
}

TEST(DeviceReading, NeedsARegularFileForReadingAnywhere)
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadOnly);
    EXPECT_EQ(descriptorOf(buffer), -1);
    QFile null(QStringLiteral("/dev/null"));
    ASSERT_TRUE(null.open(QIODevice::ReadOnly));
    EXPECT_EQ(descriptorOf(null), -1);
    QFile resource(QStringLiteral(":/qt-project.org/qmime/packages/freedesktop.org.xml"));
    if (resource.open(QIODevice::ReadOnly)) {
        EXPECT_EQ(descriptorOf(resource), -1);
    }
}

} // namespace
} // namespace OrvTest
