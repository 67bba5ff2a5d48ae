// Texts on their way to the screen.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace quorva {

/// A text of our own.
[[nodiscard]] inline QString ours(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A text from elsewhere, such as a participant's name, made fit for one line: line breaks and
/// other control characters become blanks, marks that would turn the line's direction around are
/// left out, blanks in a row become one. What is written from right to left stays so.
[[nodiscard]] QString foreign(std::string_view text);

/// The same, set apart from what stands beside it, so that its direction does not spread.
[[nodiscard]] QString isolated(std::string_view text);

/// UTF-8 of what the user interface says.
[[nodiscard]] inline std::string utf8(const QString& text) {
    return text.toStdString();
}

} // namespace quorva
