#include "platform/linux/calendars/CalendarPlaces.h"

#include "platform/PreferenceKeys.h"
#include "platform/linux/storage/PreferencesFormat.h"

#include <glib.h>

namespace quorva {
namespace {

using Folders = std::vector<std::string>;

/// The folders that the preferences name; nothing, with the reason, when that cannot be read.
std::optional<Folders> namedFolders(const WholeFile& preferences, std::string& fault) {
    constexpr auto key = preferenceKeys::calendarFolders.name;
    std::error_code error;
    const auto content = preferences.read(error);
    if (!content) {
        fault = error.message();
        return error ? std::nullopt : std::optional(Folders());
    }
    const auto document = PreferencesDocument::parse(content->bytes, fault);
    if (!document)
        return std::nullopt;
    const auto values = document->values();
    const auto named = values.find(key);
    if (named == values.end())
        return Folders();
    if (const auto* const folders = std::get_if<Folders>(&named->second))
        return *folders;
    fault = std::string(key) + " is not a list of texts";
    return std::nullopt;
}

} // namespace

CalendarPlaces findCalendarPlaces(const WholeFile& preferences) {
    CalendarPlaces places{
        .files = {.root = std::filesystem::path(g_get_user_data_dir()) / "calendars"}};
    std::string fault;
    if (const auto folders = namedFolders(preferences, fault))
        places.files.folders.assign(folders->begin(), folders->end());
    else
        places.failed.push_back({"the folders named in the preferences", fault});
    return places;
}

} // namespace quorva
