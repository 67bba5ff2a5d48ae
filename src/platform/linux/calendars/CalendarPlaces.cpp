#include "platform/linux/calendars/CalendarPlaces.h"

#include "platform/PreferenceKeys.h"
#include "platform/linux/storage/PreferencesFormat.h"

#include <glib.h>

namespace quorva {
namespace {

using Texts = std::vector<std::string>;

/// What the preferences hold; nothing, with the reason, when they cannot be read.
std::optional<PreferenceMap> valuesOf(const WholeFile& preferences, std::string& fault) {
    std::error_code error;
    const auto content = preferences.read(error);
    if (!content) {
        fault = error.message();
        return error ? std::nullopt : std::optional(PreferenceMap());
    }
    const auto document = PreferencesDocument::parse(content->bytes, fault);
    return document ? std::optional(document->values()) : std::nullopt;
}

/// The list of texts under a key; none without the key; nothing when it is something else.
std::optional<Texts> listIn(const PreferenceMap& values, const PreferenceKey<Texts>& key) {
    const auto named = values.find(key.name);
    if (named == values.end())
        return Texts();
    const auto* const list = std::get_if<Texts>(&named->second);
    return list ? std::optional(*list) : std::nullopt;
}

} // namespace

CalendarPlaces findCalendarPlaces(const WholeFile& preferences) {
    CalendarPlaces places{
        .files = {.root = std::filesystem::path(g_get_user_data_dir()) / "calendars"}};
    std::string fault;
    const auto values = valuesOf(preferences, fault);
    const auto folders = values ? listIn(*values, preferenceKeys::calendarFolders) : std::nullopt;
    if (folders)
        places.files.folders.assign(folders->begin(), folders->end());
    else if (values)
        fault = std::string(preferenceKeys::calendarFolders.name) + " is not a list of texts";
    if (!folders)
        places.failed.push_back({"the folders named in the preferences", fault});
    if (values)
        places.ownAddresses = listIn(*values, preferenceKeys::myAddresses).value_or(Texts());
    return places;
}

} // namespace quorva
