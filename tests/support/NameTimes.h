/// \file
/// Whether names that collide cost more time than others.
#pragma once

#include <QtCore/QString>

#include <functional>
#include <vector>

namespace OrvTest {

/// Expects that `use` takes no longer with colliding names than with as many others of the same
/// length. The rest is noise: a table in which all collide takes a hundred times as long.
void expectNoLonger(const std::vector<QString> &names,
                    const std::function<void(const std::vector<QString> &names)> &use);

} // namespace OrvTest
