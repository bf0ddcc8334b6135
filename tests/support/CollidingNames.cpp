#include "support/CollidingNames.h"

#include <QtCore/QHash>

#include <array>
#include <cstdint>

namespace OrvTest {

namespace {

constexpr int Places = 48;
constexpr unsigned AnySeed = 0x5eed;

/// A set of places, and the bits of the hash that replacing there changes.
struct Change
{
    std::uint64_t places;
    unsigned bits;
};

QString nameOf(std::uint64_t places)
{
    QString name;
    for (int place = 0; place < Places; ++place)
        name += QLatin1String((places >> place & 1) != 0 ? "BB" : "Aa");
    return name;
}

/// Independent sets of places that change nothing: Gaussian elimination over single bits.
std::vector<std::uint64_t> setsWithoutChange()
{
    std::vector<std::uint64_t> sets;
    std::array<Change, 32> byHighestBit{}; // no places: none yet
    const unsigned unchanged = qHash(nameOf(0), AnySeed);
    for (int place = 0; place < Places; ++place) {
        const std::uint64_t only = std::uint64_t(1) << place;
        Change change{only, qHash(nameOf(only), AnySeed) ^ unchanged};
        for (unsigned bit = 32; bit-- > 0;) {
            if ((change.bits >> bit & 1) == 0)
                continue;
            if (byHighestBit[bit].places == 0) {
                byHighestBit[bit] = change;
                break;
            }
            change.places ^= byHighestBit[bit].places;
            change.bits ^= byHighestBit[bit].bits;
        }
        if (change.bits == 0)
            sets.push_back(change.places);
    }
    return sets;
}

} // namespace

std::vector<QString> collidingNames(int count)
{
    const std::vector<std::uint64_t> sets = setsWithoutChange();
    std::vector<QString> names;
    for (unsigned number = 0; number < unsigned(count); ++number) {
        // An odd factor gives each number of 16 bits another one.
        const unsigned scattered = number * 40503u & 0xffffu;
        std::uint64_t places = 0;
        for (unsigned i = 0; i < 16; ++i)
            places ^= (scattered >> i & 1) != 0 ? sets.at(i) : 0;
        names.push_back(nameOf(places));
    }
    return names;
}

} // namespace OrvTest
