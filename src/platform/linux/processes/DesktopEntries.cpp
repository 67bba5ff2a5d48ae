#include "platform/linux/processes/DesktopEntries.h"

#include "platform/linux/glib/MainContext.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva {
namespace {

constexpr Seconds firstReadingTime{10};

std::vector<std::filesystem::path> splitPath(std::string_view text) {
    std::vector<std::filesystem::path> paths;
    while (!text.empty()) {
        const auto end = std::min(text.find(':'), text.size());
        if (end > 0 && text[0] == '/')
            paths.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return paths;
}

} // namespace

DesktopEntryPlaces DesktopEntries::standardPlaces() {
    DesktopEntryPlaces places;
    const std::filesystem::path home = g_get_user_data_dir();
    std::vector<std::filesystem::path> data{home};
    for (const auto* const* folder = g_get_system_data_dirs(); *folder; ++folder)
        data.emplace_back(*folder);
    data.push_back(home / "flatpak/exports/share");
    data.emplace_back("/var/lib/flatpak/exports/share");
    data.emplace_back("/var/lib/snapd/desktop");
    for (const auto& folder : data) {
        const auto applications = (folder / "applications").lexically_normal();
        if (std::find(places.folders.begin(), places.folders.end(), applications) ==
            places.folders.end())
            places.folders.push_back(applications);
    }
    const auto* const path = g_getenv("PATH");
    places.searchPath = splitPath(path ? path : "/usr/local/bin:/usr/bin:/bin");
    return places;
}

DesktopEntries::DesktopEntries(MainLoop& loop_, Log& log_, DesktopEntryPlaces places)
    : loop(loop_), log(log_), reader(std::make_shared<DesktopEntryReader>(std::move(places))) {
    deadline = loop.after(firstReadingTime, lifetime.guard([this] { giveUpWaiting(); }));
    refresh();
}

void DesktopEntries::refresh() {
    if (isReading)
        return;
    isReading =
        worker.post([held = reader, now = loop.now(),
                     back = std::function<void(const DesktopEntryReader::Reading&)>(lifetime.guard(
                         [this](const DesktopEntryReader::Reading& reading) { adopt(reading); }))] {
            postToMain([back, reading = held->read(now)] { back(reading); });
        });
}

Subscription DesktopEntries::onChange(Task callback) {
    return changes.add(std::move(callback));
}

void DesktopEntries::adopt(const DesktopEntryReader::Reading& reading) {
    isReading = false;
    deadline.reset();
    for (const auto& [path, reason] : reading.leftOut)
        if (complainedOf.insert(path).second)
            log.notice(Printable::format("{} is left out: {}", path.string(), reason),
                       logCategory::appState);
    if (reading.index != current)
        replace(reading.index);
}

void DesktopEntries::giveUpWaiting() {
    deadline.reset();
    log.notice("The desktop entries have not been read within 10 seconds: until they are, "
               "applications are identified by their executables alone",
               logCategory::appState);
    replace(std::make_shared<const DesktopEntryIndex>());
}

void DesktopEntries::replace(std::shared_ptr<const DesktopEntryIndex> index) {
    current = std::move(index);
    changes.call();
}

} // namespace quorva
