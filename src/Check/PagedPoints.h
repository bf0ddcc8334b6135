/// \file
/// Floats by the million, three by three, without ever moving them.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace Halvard::Orv::Checking {

/// An array of points that grows by pages: growing by doubling would hold three times the bytes
/// for a moment.
class PagedPoints
{
public:
    void append(const float *xyz)
    {
        const size_t slot = _count % PagePoints;
        if (slot == 0)
            _pages.emplace_back(new float[3 * PagePoints]); // every float is written before use
        float *point = _pages.back().get() + 3 * slot;
        point[0] = xyz[0];
        point[1] = xyz[1];
        point[2] = xyz[2];
        ++_count;
    }

    size_t count() const { return _count; }

    /// \pre `i` < count()
    const float *operator[](size_t i) const
    {
        return _pages[i / PagePoints].get() + 3 * (i % PagePoints);
    }

private:
    static constexpr size_t PagePoints = size_t(1) << 14;

    std::vector<std::unique_ptr<float[]>> _pages;
    size_t _count = 0;
};

} // namespace Halvard::Orv::Checking
