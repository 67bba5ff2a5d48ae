#include "platform/linux/storage/FolderWatch.h"

#include <glib-unix.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <sys/inotify.h>

namespace quorva {
namespace {

constexpr std::uint32_t changes = IN_ATTRIB | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MODIFY |
                                  IN_MOVE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

} // namespace

FolderWatch::FolderWatch(std::function<void(const WatchedFolder&)> onChange_)
    : onChange(std::move(onChange_)), inotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (!inotify)
        return;
    source = g_unix_fd_add(inotify.get(), G_IO_IN, &FolderWatch::receive, this);
}

FolderWatch::~FolderWatch() {
    if (source != 0)
        g_source_remove(source);
}

std::vector<WatchedFolder> FolderWatch::watch(const std::vector<WatchedFolder>& folders) {
    const std::set<WatchedFolder> wanted(folders.begin(), folders.end());
    std::set<int> kept;
    std::vector<int> ended;
    for (auto at = watches.begin(); at != watches.end();) {
        const bool isWanted = wanted.contains(at->first);
        if (isWanted)
            kept.insert(at->second);
        else
            ended.push_back(at->second);
        at = isWanted ? std::next(at) : watches.erase(at);
    }
    for (const int watch : ended)
        if (!kept.contains(watch))
            ::inotify_rm_watch(inotify.get(), watch);

    std::vector<WatchedFolder> added;
    for (const auto& folder : wanted) {
        if (watches.contains(folder))
            continue;
        const int watch = ::inotify_add_watch(inotify.get(), folder.path.c_str(), changes);
        if (watch < 0)
            continue;
        watches.emplace(folder, watch);
        added.push_back(folder);
    }
    return added;
}

bool FolderWatch::isWatched(const std::filesystem::path& folder) const {
    return watches.contains({folder, std::nullopt});
}

gboolean FolderWatch::receive(gint, GIOCondition, gpointer self) {
    static_cast<FolderWatch*>(self)->receiveEvents();
    return G_SOURCE_CONTINUE;
}

void FolderWatch::receiveEvents() {
    alignas(inotify_event) std::array<char, 16'384> buffer{};
    std::set<WatchedFolder> changed;
    while (true) {
        const auto size = ::read(inotify.get(), buffer.data(), buffer.size());
        if (size <= 0)
            break;
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const char* const name = buffer.data() + at + sizeof event;
            at += sizeof event + event.len;
            const bool isOverflow = (event.mask & IN_Q_OVERFLOW) != 0;
            for (const auto& [folder, watch] : watches) {
                const bool isAwaited =
                    !folder.awaited || (event.len > 0 && *folder.awaited == name);
                if (isOverflow || (watch == event.wd && isAwaited))
                    changed.insert(folder);
            }
            // The kernel ended this watch because the folder is gone.
            if ((event.mask & IN_IGNORED) != 0)
                std::erase_if(
                    watches, [ended = event.wd](const auto& each) { return each.second == ended; });
        }
    }
    const auto report = onChange; // may destroy this object
    for (const auto& folder : changed)
        report(folder);
}

} // namespace quorva
