#include "reference/Shrinking.h"

#include "reference/UnusedValues.h"

#include <algorithm>

namespace OrvReference {

namespace {

using Pieces = std::vector<QByteArray>;

/// Pieces that end in `separator`, the last one perhaps without.
Pieces split(const QByteArray &bytes, char separator)
{
    Pieces pieces;
    int start = 0;
    while (start < bytes.size()) {
        const int end = bytes.indexOf(separator, start);
        const int length = end < 0 ? bytes.size() - start : end - start + 1;
        pieces.push_back(bytes.mid(start, length));
        start += length;
    }
    return pieces;
}

Pieces characters(const QByteArray &bytes)
{
    Pieces pieces;
    for (const char character : bytes)
        pieces.push_back(QByteArray(1, character));
    return pieces;
}

QByteArray joined(const Pieces &pieces)
{
    QByteArray bytes;
    for (const QByteArray &piece : pieces)
        bytes += piece;
    return bytes;
}

class Shrinker
{
public:
    Shrinker(const ModelFiles &start, const std::function<bool(const ModelFiles &)> &shows,
             int attempts)
        : model(start), _shows(shows), _attempts(attempts)
    {}

    void run()
    {
        std::size_t size = 0;
        do {
            size = bytes();
            dropCodec();
            dropFiles();
            for (std::size_t file = 0; file < model.files.size(); ++file) {
                dropPieces(file, [](const QByteArray &text) { return split(text, '\n'); });
                dropUnusedValues(file);
                dropPieces(file, [](const QByteArray &text) { return split(text, ' '); });
                if (model.files[file].contents.size() < 2000)
                    dropPieces(file, characters);
            }
        } while (bytes() < size && _attempts > 0);
    }

    ModelFiles model;

private:
    std::size_t bytes() const
    {
        std::size_t sum = model.files.size();
        for (const ModelFile &file : model.files)
            sum += static_cast<std::size_t>(file.contents.size());
        return sum;
    }

    bool tryOut(const ModelFiles &candidate)
    {
        if (_attempts <= 0)
            return false;
        --_attempts;
        if (!_shows(candidate))
            return false;
        model = candidate;
        return true;
    }

    void dropCodec()
    {
        ModelFiles candidate = model;
        candidate.localeCodec.clear();
        if (!model.localeCodec.isEmpty())
            tryOut(candidate);
    }

    /// All but the OBJ file.
    void dropFiles()
    {
        for (std::size_t file = model.files.size() - 1; file > 0; --file) {
            ModelFiles candidate = model;
            candidate.files.erase(candidate.files.begin() + static_cast<std::ptrdiff_t>(file));
            tryOut(candidate);
        }
    }

    /// Dropping a value by its line alone would have every face after it refer to others.
    void dropUnusedValues(std::size_t file)
    {
        for (const char *const keyword : {"v", "vt", "vn"}) {
            ModelFiles candidate = model;
            QByteArray &contents = candidate.files[file].contents;
            contents = withoutUnusedValues(contents, keyword);
            if (contents != model.files[file].contents)
                tryOut(candidate);
        }
    }

    /// Drops runs of pieces, long runs first.
    void dropPieces(std::size_t file, const std::function<Pieces(const QByteArray &)> &cut)
    {
        std::size_t run = std::max<std::size_t>(1, cut(model.files[file].contents).size() / 2);
        for (; run > 0; run /= 2) {
            std::size_t start = 0;
            while (start < cut(model.files[file].contents).size() && _attempts > 0) {
                Pieces pieces = cut(model.files[file].contents);
                const std::size_t end = std::min(start + run, pieces.size());
                pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(start),
                             pieces.begin() + static_cast<std::ptrdiff_t>(end));
                ModelFiles candidate = model;
                candidate.files[file].contents = joined(pieces);
                if (!tryOut(candidate))
                    start += run;
            }
        }
    }

    const std::function<bool(const ModelFiles &)> &_shows;
    int _attempts;
};

} // namespace

ModelFiles shrunk(const ModelFiles &model, const std::function<bool(const ModelFiles &)> &shows,
                  int attempts)
{
    Shrinker shrinker(model, shows, attempts);
    shrinker.run();
    return shrinker.model;
}

} // namespace OrvReference
