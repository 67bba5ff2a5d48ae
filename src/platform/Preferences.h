// Typed values under keys: the user's settings, and the program's data that outlives a run.
#pragma once

#include "base/Subscription.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace quorva {

/// Bytes, which need not be text.
struct PreferenceData {
    std::string bytes;

    bool operator==(const PreferenceData&) const = default;
};

/// A value of none of the types below, written by another program or a later version. It can be
/// stored under another key.
struct UnknownPreference {
    std::string json; ///< its stored form; empty for no value

    bool operator==(const UnknownPreference&) const = default;
};

/// Texts are UTF-8, doubles are finite.
using PreferenceValue = std::variant<UnknownPreference, bool, std::int64_t, double, std::string,
                                     std::vector<std::string>, PreferenceData>;

/// The result of reading a key as a T.
template <typename T>
struct PreferenceReading {
    std::optional<T> value; ///< absent when the key is missing, or holds a value of another type
    bool isMissing = false;
};

/// Main thread only. No operation waits for the disk or fails: a value that cannot be stored now is
/// kept in memory and stored with a later change.
class Preferences {
public:
    virtual ~Preferences() = default;

    /// The value under `key`, as it was last set or read. Nothing when the key is missing.
    [[nodiscard]] virtual std::optional<PreferenceValue> value(std::string_view key) const = 0;

    /// Sets the value under `key`, and calls `onDurable`, if given, as a task of the main loop once
    /// the change, or a later one of the same key, would survive a power cut. It is not called
    /// while nothing can be stored, nor after the preferences were destroyed. Setting an
    /// UnknownPreference that holds nothing does nothing.
    virtual void set(std::string_view key, PreferenceValue value, Task onDurable = {}) = 0;

    /// Removes `key`; a missing one is a success. `onDurable` as above.
    virtual void remove(std::string_view key, Task onDurable = {}) = 0;

    /// The value under `key` as a T: bool, std::int64_t, double, std::string,
    /// std::vector<std::string> or PreferenceData. An integer can be read as a double; no other
    /// type as another.
    template <typename T>
    [[nodiscard]] PreferenceReading<T> read(std::string_view key) const {
        auto found = value(key);
        if (!found)
            return {.value = std::nullopt, .isMissing = true};
        if constexpr (std::is_same_v<T, double>)
            if (const auto* const integer = std::get_if<std::int64_t>(&*found))
                return {.value = static_cast<double>(*integer)};
        if (auto* const typed = std::get_if<T>(&*found))
            return {.value = std::move(*typed)};
        return {};
    }
};

} // namespace quorva
