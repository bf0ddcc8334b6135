/// \file
/// Text as the readers of runs take it.
#pragma once

#include "Numbers/DigitMarks.h"

#include <string>

namespace OrvTest {

/// Text with readable bytes around it.
class MarkedText
{
public:
    explicit MarkedText(const std::string &text)
        : _padded(std::string(margin, '\0') + text + std::string(margin, '\0'))
    {
        _marks.mark(begin(), end());
    }

    const char *begin() const { return _padded.data() + margin; }
    const char *end() const { return _padded.data() + _padded.size() - margin; }
    const Halvard::Orv::DigitMarks &marks() const { return _marks; }

private:
    static constexpr std::size_t margin = 64;
    const std::string _padded;
    Halvard::Orv::DigitMarks _marks;
};

} // namespace OrvTest
