// The stored form of preferences, a JSON object that people can read and edit:
//
//     {"version": 1, "preferences": {"stampVolume": 0.5, "detectionLog": {"data": "[]"}, …}}
//
// Booleans, integers, doubles, texts and lists of texts are themselves; data is an object with one
// member, "data" where it is valid UTF-8 and "base64" where it is not. Everything else in
// the file is preserved. Pure functions on bytes, callable from any thread.
#pragma once

#include "platform/Preferences.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quorva {

using PreferenceMap = std::map<std::string, PreferenceValue, std::less<>>;

class PreferencesDocument {
public:
    static constexpr int version = 1;

    /// An empty document.
    PreferencesDocument();

    /// Parses a file's content. Nothing, with `fault` set to a readable reason, when it is not a
    /// JSON object in UTF-8, was written by a later version, or is nested more than 64 levels deep.
    [[nodiscard]] static std::optional<PreferencesDocument> parse(std::string_view bytes,
                                                                  std::string& fault);

    /// The file's content; ends in a line feed.
    [[nodiscard]] std::string serialised() const;

    /// All values; UnknownPreference for a value of any other type.
    [[nodiscard]] PreferenceMap values() const;

    /// Sets the value under `key`, or removes the key. Returns whether that changed anything.
    bool apply(const std::string& key, const std::optional<PreferenceValue>& value);

private:
    explicit PreferencesDocument(nlohmann::json whole);

    nlohmann::json root; ///< an object with a member "preferences", which is an object too
};

} // namespace quorva
