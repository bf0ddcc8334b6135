/// \file
/// The hash of rows of bytes that all welding uses.
#pragma once

#include <QtCore/QtGlobal>

#include <cstddef>
#include <cstring>

namespace Halvard::Orv {

/// Hashes words with a multiplication of 64 by 64 bits whose halves are folded,
/// after W. Yi, wyhash (2019).
///
/// Seeded once per process and never exposed, so files cannot provoke collisions. No
/// numbering depends on the seeds.
class RowHash
{
public:
    RowHash();

    quint64 start() const { return _start; }

    /// The hash of what `hash` stands for, followed by two words. Rows of one
    /// table all give equally many words, so padding with zeros is no ambiguity.
    quint64 add(quint64 hash, quint64 first, quint64 second) const
    {
        __extension__ using Wide = unsigned __int128;
        const Wide product = static_cast<Wide>(first ^ _secret) * (second ^ hash);
        return static_cast<quint64>(product) ^ static_cast<quint64>(product >> 64);
    }

    /// The same for any number of bytes.
    quint64 addBytes(quint64 hash, const char *bytes, size_t count) const
    {
        for (; count > 2 * sizeof(quint64); count -= 2 * sizeof(quint64)) {
            hash = add(hash, word(bytes), word(bytes + sizeof(quint64)));
            bytes += 2 * sizeof(quint64);
        }
        quint64 rest[2] = {0, 0};
        if (count > 0)
            std::memcpy(rest, bytes, count);
        return add(hash, rest[0], rest[1]);
    }

    static quint64 word(const void *bytes)
    {
        quint64 value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }

    static quint32 halfWord(const void *bytes)
    {
        quint32 value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }

private:
    quint64 _start;
    quint64 _secret;
};

} // namespace Halvard::Orv
