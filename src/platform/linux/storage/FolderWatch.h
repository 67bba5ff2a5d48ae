// Reports changes in folders (inotify(7)).
#pragma once

#include "platform/linux/glib/Handles.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

struct WatchedFolder {
    std::filesystem::path path;
    std::optional<std::string> awaited; ///< only the appearance of this name is reported

    auto operator<=>(const WatchedFolder&) const = default; // NOLINT(modernize-use-nullptr)
};

/// Main thread only, on GLib's default main context.
class FolderWatch {
public:
    /// `onChange` is called on the main loop with the folder; several changes may come as one call.
    explicit FolderWatch(std::function<void(const WatchedFolder&)> onChange);
    ~FolderWatch();

    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Watches these folders and no others. Returns those that were not watched before: changes in
    /// them until now were not seen. A folder that cannot be watched is in neither (`isWatched`).
    [[nodiscard]] std::vector<WatchedFolder> watch(const std::vector<WatchedFolder>& folders);

    /// Whether changes in this folder are reported. False where the system's limit is reached.
    [[nodiscard]] bool isWatched(const std::filesystem::path& folder) const;

private:
    static gboolean receive(gint fd, GIOCondition condition, gpointer self);
    void receiveEvents();

    std::function<void(const WatchedFolder&)> onChange;
    FileDescriptor inotify;
    std::map<WatchedFolder, int> watches;
    guint source = 0;
};

} // namespace quorva
