// Preferences in memory.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/Preferences.h"

#include <map>

namespace quorva {

class MemoryPreferences final : public Preferences {
public:
    /// The loop must outlive the preferences.
    explicit MemoryPreferences(MainLoop& loop_) : loop(loop_) {}

    std::map<std::string, PreferenceValue, std::less<>> values;

    [[nodiscard]] std::optional<PreferenceValue> value(std::string_view key) const override {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void set(std::string_view key, PreferenceValue value, Task onDurable = {}) override {
        const auto* const unknown = std::get_if<UnknownPreference>(&value);
        if (unknown != nullptr && unknown->json.empty())
            return;
        values.insert_or_assign(std::string(key), std::move(value));
        postDurable(std::move(onDurable));
    }
    void remove(std::string_view key, Task onDurable = {}) override {
        values.erase(std::string(key));
        postDurable(std::move(onDurable));
    }

private:
    void postDurable(Task onDurable) {
        if (onDurable)
            loop.post(lifetime.guard(std::move(onDurable)));
    }

    MainLoop& loop;
    Lifetime lifetime;
};

} // namespace quorva
