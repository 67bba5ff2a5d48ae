// Qt without a screen for the tests, and its warnings.
#pragma once

#include <QApplication>
#include <string>

namespace quorva {

/// Returns the warnings of Qt and the views since the last call. They are collected while a test of
/// UserInterface runs, without those about the missing screen.
[[nodiscard]] std::string takeWarnings();

} // namespace quorva
