// Where bytes from outside become text.
#pragma once

#include "platform/linux/glib/Handles.h"

#include <string>
#include <string_view>

namespace quorva {

/// The bytes as valid UTF-8: invalid ones, zero bytes included, become replacement characters. Pure
/// function, callable from any thread.
[[nodiscard]] inline std::string validUtf8(std::string_view bytes) {
    if (g_utf8_validate_len(bytes.data(), bytes.size(), nullptr) != FALSE)
        return std::string(bytes);
    const GCharsPtr valid(g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size())));
    return valid.get();
}

} // namespace quorva
