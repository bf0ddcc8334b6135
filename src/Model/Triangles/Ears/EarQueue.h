/// \file
/// Which ear is the sharpest, while ears come and go.
#pragma once

#include <algorithm>
#include <limits>
#include <vector>

namespace Halvard::Orv {

/// Finds the ear that a loop over all positions would find: the first of those with
/// the greatest cosine.
///
/// A tournament over positions: a node has the greater cosine of its two children.
/// Only cosines are kept, and the winner is found by walking down to where the
/// greatest one comes from, to the left wherever both sides have it. So the lowest
/// position wins a tie, also between 0.0 and -0.0, which compare equal.
///
/// The cosine of an ear is a number: an ear's crossZ is greater than 0, so that no
/// component of its two directions is NaN, and both are finite.
class EarQueue
{
public:
    /// Positions 0 to `count` - 1, none of them an ear.
    void reset(int count)
    {
        _leaves = 1;
        while (_leaves < static_cast<size_t>(count))
            _leaves *= 2;
        _cosines.assign(2 * _leaves, NoEar);
    }

    /// As set(), to be followed by build() before anything else.
    void load(int position, float cosine)
    {
        _cosines[_leaves + static_cast<size_t>(position)] = cosine;
    }

    void build()
    {
        for (size_t node = _leaves - 1; node > 0; --node)
            _cosines[node] = greaterChild(node);
    }

    /// \pre `cosine` is not NaN.
    void set(int position, float cosine)
    {
        size_t node = _leaves + static_cast<size_t>(position);
        _cosines[node] = cosine;
        for (node /= 2; node > 0; node /= 2) {
            const float greater = greaterChild(node);
            if (_cosines[node] == greater)
                return;
            _cosines[node] = greater;
        }
    }

    void remove(int position) { set(position, NoEar); }

    /// -1 when there is no ear.
    int sharpest() const
    {
        const float greatest = _cosines[1];
        if (greatest == NoEar)
            return -1;
        size_t node = 1;
        while (node < _leaves)
            node = _cosines[2 * node] == greatest ? 2 * node : 2 * node + 1;
        return static_cast<int>(node - _leaves);
    }

    /// What a position without an ear has: less than every cosine.
    static constexpr float NoEar = -std::numeric_limits<float>::infinity();

private:
    float greaterChild(size_t node) const
    {
        return std::max(_cosines[2 * node], _cosines[2 * node + 1]);
    }

    /// Node 1 is the root; the children of node i are 2 i and 2 i + 1.
    std::vector<float> _cosines;
    size_t _leaves = 1;
};

} // namespace Halvard::Orv
