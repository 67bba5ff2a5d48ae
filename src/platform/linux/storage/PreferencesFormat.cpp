#include "platform/linux/storage/PreferencesFormat.h"

#include "platform/linux/glib/Handles.h"

#include <algorithm>
#include <limits>

namespace quorva {
namespace {

using Json = nlohmann::json;

constexpr auto versionKey = "version";
constexpr auto preferencesKey = "preferences";
constexpr auto textDataKey = "data";
constexpr auto base64Key = "base64";
constexpr int deepestNesting = 64;

/// An upper bound on the nesting of a JSON text. Copying and writing JSON recurses, so that a small
/// file could otherwise exhaust the stack.
int nestingOf(std::string_view json) {
    int depth = 0;
    int deepest = 0;
    bool isInText = false;
    for (std::size_t at = 0; at < json.size(); ++at) {
        const char c = json[at];
        if (c == '"')
            isInText = !isInText;
        else if (isInText)
            at += c == '\\';
        else if (c == '[' || c == '{')
            deepest = std::max(deepest, ++depth);
        else if (c == ']' || c == '}')
            --depth;
    }
    return deepest;
}

bool isUtf8(const std::string& bytes) {
    return g_utf8_validate_len(bytes.data(), bytes.size(), nullptr) != 0;
}

std::string toBase64(const std::string& bytes) {
    const GCharsPtr text(
        g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size()));
    return text.get();
}

/// Accepts only the output of `toBase64`; GLib's own decoder skips invalid characters.
std::optional<std::string> fromBase64(const std::string& text) {
    gsize size = 0;
    const GCharsPtr decoded(reinterpret_cast<gchar*>(g_base64_decode(text.c_str(), &size)));
    std::string bytes(decoded.get(), size);
    return toBase64(bytes) == text ? std::optional(std::move(bytes)) : std::nullopt;
}

PreferenceValue unknownOf(const Json& json) {
    return UnknownPreference{json.dump(-1, ' ', false, Json::error_handler_t::replace)};
}

struct Encode {
    Json operator()(const UnknownPreference& unknown) const {
        auto json = Json::parse(unknown.json, nullptr, false);
        return json.is_discarded() ? Json() : json;
    }
    Json operator()(const PreferenceData& data) const {
        if (isUtf8(data.bytes))
            return Json::object({{textDataKey, data.bytes}});
        return Json::object({{base64Key, toBase64(data.bytes)}});
    }
    template <typename T>
    Json operator()(const T& value) const {
        return value;
    }
};

PreferenceValue decodeList(const Json& json) {
    std::vector<std::string> texts;
    texts.reserve(json.size());
    for (const auto& element : json) {
        if (!element.is_string())
            return unknownOf(json);
        texts.push_back(element.get<std::string>());
    }
    return texts;
}

PreferenceValue decodeData(const Json& json) {
    if (json.size() != 1 || !json.front().is_string())
        return unknownOf(json);
    const auto text = json.front().get<std::string>();
    if (json.contains(textDataKey))
        return PreferenceData{text};
    auto bytes = json.contains(base64Key) ? fromBase64(text) : std::nullopt;
    return bytes ? PreferenceValue(PreferenceData{std::move(*bytes)}) : unknownOf(json);
}

PreferenceValue decode(const Json& json) {
    switch (json.type()) {
    case Json::value_t::boolean:
        return json.get<bool>();
    case Json::value_t::number_integer:
        return json.get<std::int64_t>();
    case Json::value_t::number_unsigned:
        if (json.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max())
            return unknownOf(json);
        return json.get<std::int64_t>();
    case Json::value_t::number_float:
        return json.get<double>();
    case Json::value_t::string:
        return json.get<std::string>();
    case Json::value_t::array:
        return decodeList(json);
    case Json::value_t::object:
        return decodeData(json);
    default:
        return unknownOf(json);
    }
}

} // namespace

PreferencesDocument::PreferencesDocument()
    : root({{versionKey, version}, {preferencesKey, Json::object()}}) {}

PreferencesDocument::PreferencesDocument(Json whole) : root(std::move(whole)) {}

std::optional<PreferencesDocument> PreferencesDocument::parse(std::string_view bytes,
                                                              std::string& fault) {
    const auto refuse = [&fault](const char* why) {
        fault = why;
        return std::nullopt;
    };
    if (nestingOf(bytes) > deepestNesting)
        return refuse("it is nested too deep");
    auto root = Json::parse(bytes, nullptr, false);
    if (!root.is_object())
        return refuse(root.is_discarded() ? "it is not JSON" : "it is not a JSON object");

    const auto& itsVersion = root.emplace(versionKey, version).first.value();
    if (!itsVersion.is_number_integer() || itsVersion < 1)
        return refuse("its version is invalid");
    if (itsVersion > version)
        return refuse("it was written by a later version of this program");
    if (!root.emplace(preferencesKey, Json::object()).first.value().is_object())
        return refuse("its preferences are not a JSON object");
    return PreferencesDocument(std::move(root));
}

std::string PreferencesDocument::serialised() const {
    return root.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";
}

PreferenceMap PreferencesDocument::values() const {
    PreferenceMap values;
    for (const auto& [key, json] : root.at(preferencesKey).items())
        values.emplace(key, decode(json));
    return values;
}

bool PreferencesDocument::apply(const std::string& key,
                                const std::optional<PreferenceValue>& value) {
    auto& preferences = root.at(preferencesKey);
    if (!value)
        return preferences.erase(key) > 0;
    const auto stored = preferences.find(key);
    if (stored != preferences.end() && decode(*stored) == *value)
        return false;
    preferences[key] = std::visit(Encode{}, *value);
    return true;
}

} // namespace quorva
