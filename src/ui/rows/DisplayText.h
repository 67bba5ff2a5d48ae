// Prepares texts for the screen.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace quorva {

/// A text of this program.
[[nodiscard]] inline QString ours(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A text from outside, such as a participant's name, for one line: line breaks and other control
/// characters become blanks, consecutive blanks become one, and marks that change the text
/// direction are removed. Right-to-left text stays right-to-left.
[[nodiscard]] QString foreign(std::string_view text);

/// The same, isolated so that its direction does not affect the text around it.
[[nodiscard]] QString isolated(std::string_view text);

/// A text of the user interface as UTF-8.
[[nodiscard]] inline std::string utf8(const QString& text) {
    return text.toStdString();
}

} // namespace quorva
