/// \file
/// JSON written piece by piece, for documents larger than one wants in memory.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <vector>

class QIODevice;

namespace Halvard::Orv::Cli {

/// Writes one document, indented, in UTF-8:
///
///     JSONWriter json(device);
///     json.beginObject();
///     json.key("indices");
///     json.beginArray(3);              // three to a line
///     for (unsigned index : indices)
///         json.value(index);
///     json.endArray();
///     json.endObject();
///     if (!json.finish()) ...
///
/// The calls must make up a document; that is not checked.
class JSONWriter
{
public:
    /// `perLine` of beginArray(): the whole array on one line.
    static constexpr int OneLine = 0;

    explicit JSONWriter(QIODevice &device);

    void beginObject();
    void endObject();
    /// \param perLine values to a line, at least 1, or `OneLine`. An array within a
    ///        one-line array must be one too.
    void beginArray(int perLine = 1);
    void endArray();
    /// The name of the value, object or array that comes next.
    void key(const QString &name);
    void key(const char *ascii);

    /// A key and its value.
    template <typename Value>
    void member(const char *ascii, const Value &value)
    {
        key(ascii);
        this->value(value);
    }

    void value(const QString &text);
    void value(bool isTrue);
    void value(qint64 number);
    void value(quint64 number);
    void value(int number) { value(qint64(number)); }
    void value(unsigned number) { value(quint64(number)); }
    /// The shortest decimal that reads back to the same number, -0 as -0. JSON has
    /// no other numbers than finite ones: the rest are "nan", "inf" and "-inf".
    void value(float number);
    void value(double number);
    void null();

    /// Ends the document with a line break and writes what is left.
    /// \return whether all of it reached the device.
    bool finish();

private:
    struct Level
    {
        int perLine;
        quint64 count = 0;
    };

    void startItem();
    void open(char bracket, int perLine);
    void close(char bracket);
    void newLine();
    void raw(const char *bytes, int size);
    void flush();
    template <typename Number>
    void number(Number value);

    QIODevice &_device;
    QByteArray _pending;
    std::vector<Level> _levels;
    bool _isAfterKey = false;
    bool _isBroken = false;
};

} // namespace Halvard::Orv::Cli
