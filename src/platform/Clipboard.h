// The clipboard that copy and paste use.
#pragma once

#include <string_view>

namespace quorva {

/// Main thread only.
class Clipboard {
public:
    virtual ~Clipboard() = default;

    /// Puts a plain UTF-8 text there in place of whatever it holds. It stays until another program
    /// puts something else there; where the desktop keeps no clipboard, no longer than this program
    /// runs.
    virtual void setText(std::string_view text) = 0;
};

} // namespace quorva
