/// \file
/// Points and directions by the million, without ever moving them.
#pragma once

#include <QtCore/QtGlobal>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

namespace Halvard::Orv::Checking {

/// An array of triples that grows by pages: growing by doubling would hold three times the bytes
/// for a moment.
template <typename Number>
class PagedTriples
{
public:
    void append(Number x, Number y, Number z)
    {
        const size_t slot = _count % PageTriples;
        if (slot == 0)
            _pages.emplace_back(new Number[3 * PageTriples]); // all is written before it is read
        Number *triple = _pages.back().get() + 3 * slot;
        triple[0] = x;
        triple[1] = y;
        triple[2] = z;
        ++_count;
    }

    size_t count() const { return _count; }

    /// \pre `i` < count()
    const Number *operator[](size_t i) const
    {
        return _pages[i / PageTriples].get() + 3 * (i % PageTriples);
    }

private:
    static constexpr size_t PageTriples = size_t(1) << 14;

    std::vector<std::unique_ptr<Number[]>> _pages;
    size_t _count = 0;
};

using PagedPoints = PagedTriples<float>;

/// Directions of vectors, in 16 bits a component: as exact as asking for their side takes.
class PagedDirections
{
public:
    void append(const float *xyz)
    {
        constexpr float Largest = 32767.0f;
        const float length = std::max({std::fabs(xyz[0]), std::fabs(xyz[1]), std::fabs(xyz[2])});
        // Neither zero nor infinity nor NaN has a direction.
        const bool hasDirection = length > 0.0f && std::isfinite(xyz[0] + xyz[1] + xyz[2]);
        const auto scaled = [=](float component) {
            return hasDirection ? static_cast<qint16>(component / length * Largest) : qint16(0);
        };
        _directions.append(scaled(xyz[0]), scaled(xyz[1]), scaled(xyz[2]));
    }

    size_t count() const { return _directions.count(); }

    /// \pre `i` < count()
    const qint16 *operator[](size_t i) const { return _directions[i]; }

private:
    PagedTriples<qint16> _directions;
};

} // namespace Halvard::Orv::Checking
