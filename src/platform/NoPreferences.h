// Preferences that hold nothing and keep nothing, for a look that is to leave no trace.
#pragma once

#include "platform/Preferences.h"

namespace quorva {

/// `onDurable` is never called: nothing is ever stored.
class NoPreferences final : public Preferences {
public:
    [[nodiscard]] std::optional<PreferenceValue> value(std::string_view) const override {
        return std::nullopt;
    }
    void set(std::string_view, PreferenceValue, Task) override {}
    void remove(std::string_view, Task) override {}
};

} // namespace quorva
