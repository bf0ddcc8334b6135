/// \file
/// Where mended text goes, and changes of one line.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>

#include <string>
#include <utility>
#include <vector>

namespace Halvard::Orv::Checking {

/// Takes text to a device in blocks, to memory, or to nowhere.
class TextSink
{
public:
    /// \param device not owned; null for a dry run.
    explicit TextSink(QIODevice *device) : _device(device) {}
    /// \param memory not owned; the text is appended to it.
    explicit TextSink(std::string &memory) : _memory(&memory) {}

    void write(const char *text, size_t size)
    {
        if (_memory)
            _memory->append(text, size);
        if (!_device)
            return;
        _block.append(text, size);
        if (_block.size() >= BlockBytes)
            flush();
    }
    void write(const QByteArray &text)
    {
        write(text.constData(), static_cast<size_t>(text.size()));
    }

    /// \return false when something could not be written, now or before.
    bool flush()
    {
        const char *text = _block.data();
        auto left = static_cast<qint64>(_block.size());
        // On a full disk a part is written first: only another try learns why the rest cannot be.
        while (_device && left > 0 && !_hasFailed) {
            const qint64 count = _device->write(text, left);
            _hasFailed = count <= 0;
            text += count;
            left -= count;
        }
        _block.clear();
        return !_hasFailed;
    }

private:
    static constexpr size_t BlockBytes = size_t(1) << 18;

    QIODevice *_device = nullptr;
    std::string *_memory = nullptr;
    std::string _block;
    bool _hasFailed = false;
};

/// Changes of one line, from its begin to its end.
class LineEdits
{
public:
    /// Puts `text` in place of the bytes from `begin` to `end`, which lie behind those of the last
    /// change.
    void replace(const char *begin, const char *end, QByteArray text)
    {
        _edits.push_back({begin, end, std::move(text)});
    }
    bool isEmpty() const { return _edits.empty(); }
    void clear() { _edits.clear(); }

    void write(const char *begin, const char *end, TextSink &sink) const
    {
        for (const Edit &edit : _edits) {
            sink.write(begin, static_cast<size_t>(edit.begin - begin));
            sink.write(edit.text);
            begin = edit.end;
        }
        sink.write(begin, static_cast<size_t>(end - begin));
    }

private:
    struct Edit
    {
        const char *begin;
        const char *end;
        QByteArray text;
    };

    std::vector<Edit> _edits;
};

} // namespace Halvard::Orv::Checking
