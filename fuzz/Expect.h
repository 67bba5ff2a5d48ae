// What the fuzzers hold the program to: an expectation that fails is a fault found.
#pragma once

#include <glib.h>

#include <cstdlib>
#include <string_view>

inline void expect(bool condition) {
    if (!condition)
        std::abort();
}

/// Valid UTF-8 without zero bytes.
inline void expectText(std::string_view text) {
    expect(g_utf8_validate_len(text.data(), text.size(), nullptr) != FALSE);
}
