// The clipboard of copy and paste.
#pragma once

#include <string_view>

namespace quorva {

/// Main thread only.
class Clipboard {
public:
    virtual ~Clipboard() = default;

    /// Replaces the contents with a plain UTF-8 text. It stays until another program replaces it,
    /// or, on a desktop without a clipboard manager, until this program ends.
    virtual void setText(std::string_view text) = 0;
};

} // namespace quorva
