// Qt without a screen, for the tests of a program; and what it warns of.
#pragma once

#include <QApplication>
#include <string>

namespace quorva {

/// What Qt and the views have warned of since the last call. Filled while a test of UserInterface
/// runs; what a missing screen cannot do does not count.
[[nodiscard]] std::string takeWarnings();

} // namespace quorva
