/// \file
/// Numbers in the order of corners.
#pragma once

#include "Memory/ZeroedArray.h"

#include <QtCore/QtGlobal>

#include <cstddef>

namespace Halvard::Orv {

/// A set of corners, and for each the number of those before it: whatever first appears at these
/// corners is numbered in the order of first appearance.
class FirstCorners
{
public:
    explicit FirstCorners(size_t cornerCount)
        : _words(cornerCount / WordBits + 1), _before(cornerCount / WordBits + 1)
    {}

    /// For any thread.
    void add(quint32 corner)
    {
        __atomic_fetch_or(&_words[corner / WordBits], quint64(1) << corner % WordBits,
                          __ATOMIC_RELAXED);
    }

    /// Makes numbers of the corners added.
    /// \return how many there are.
    quint32 count()
    {
        quint32 count = 0;
        for (size_t word = 0; word < _words.size(); ++word) {
            _before[word] = count;
            count += bitsOf(_words[word]);
        }
        return count;
    }

    /// Of a corner that was added, after count(); for any thread.
    quint32 numberOf(quint32 corner) const
    {
        const size_t word = corner / WordBits;
        return _before[word] + bitsOf(_words[word] & ((quint64(1) << corner % WordBits) - 1));
    }

private:
    static constexpr quint32 WordBits = 64;

    /// Bits that are set, by sums of pairs, fours and bytes: without an instruction of its own,
    /// which not every machine has, the compiler would call a function.
    static quint32 bitsOf(quint64 word)
    {
        word -= word >> 1 & 0x5555555555555555;
        word = (word & 0x3333333333333333) + (word >> 2 & 0x3333333333333333);
        word = (word + (word >> 4)) & 0x0f0f0f0f0f0f0f0f;
        return static_cast<quint32>(word * 0x0101010101010101 >> 56);
    }

    ZeroedArray<quint64> _words;
    ZeroedArray<quint32> _before; ///< numbers before each word
};

} // namespace Halvard::Orv
