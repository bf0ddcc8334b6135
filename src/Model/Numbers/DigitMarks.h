/// \file
/// A bit per byte of text that tells digits from the rest.
#pragma once

#include "Memory/GrowArray.h"
#include "Numbers/DigitBlocks.h"

#include <QtCore/QtGlobal>

#include <cstddef>
#include <cstring>

namespace Halvard::Orv {

#ifdef ORV_SCAN_SSE2

/// Text with a bit set for every byte that is no digit.
///
/// Marking a whole chunk beforehand costs a third of an instruction per byte, and
/// a line then finds the ends of all its tokens in one word.
class DigitMarks
{
public:
    /// Bytes that window() tells about.
    static constexpr size_t WindowBytes = 57;

    /// Marks a text, which must stay where it is.
    void mark(const char *begin, const char *end)
    {
        _begin = begin;
        const auto count = static_cast<size_t>(end - begin);
        _marks.resize(count / BlockBytes + 1 + sizeof(quint64));
        quint16 *target = _marks.data();
        for (size_t i = 0; i < count; i += BlockBytes)
            *target++ = static_cast<quint16>(~digitsInBlock(begin + i));
        std::memset(target, 0xff, sizeof(quint64)); // window() looks that far
    }

    /// Bit i tells that place[i] is no digit. The bits of bytes beyond WindowBytes
    /// are set, so that there always is a next one.
    quint64 window(const char *place) const
    {
        const auto at = static_cast<size_t>(place - _begin);
        quint64 marks = 0;
        std::memcpy(&marks, reinterpret_cast<const char *>(_marks.data()) + at / 8, sizeof marks);
        return marks >> at % 8 | ~quint64(0) << WindowBytes;
    }

private:
    const char *_begin = nullptr;
    GrowArray<quint16> _marks;
};

#else

/// Nothing: the portable code looks at bytes.
class DigitMarks
{
public:
    void mark(const char *, const char *) {}
};

#endif

} // namespace Halvard::Orv
