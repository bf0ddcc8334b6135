/// \file
/// Names that Qt's hash of strings cannot tell apart, whatever its seed is.
#pragma once

#include <QtCore/QString>

#include <vector>

namespace OrvTest {

/// `count` different names, at most 2^16, of 96 letters each and the same qHash() under
/// every seed, in a scattered order.
///
/// The hash is either h = 31 h + c or a CRC. Replacing "Aa" by "BB" changes nothing for the
/// first, as 31 * 65 + 97 = 31 * 66 + 66. For the second it changes the hash by bits that
/// depend only on where it is done, so that 48 places have at least 16 independent sets
/// whose changes cancel out.
std::vector<QString> collidingNames(int count);

} // namespace OrvTest
