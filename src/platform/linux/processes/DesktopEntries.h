// The installed applications, as their desktop entries describe them: read by a worker, handed to
// the main thread as a value. Main thread only; no operation waits for a disk.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/SerialQueue.h"
#include "platform/Log.h"
#include "platform/linux/processes/DesktopEntryReader.h"

#include <memory>
#include <set>

namespace quorva {

class DesktopEntries {
public:
    /// The folders "applications" of $XDG_DATA_HOME, $XDG_DATA_DIRS and of Flatpak's and Snap's
    /// exports, and $PATH.
    [[nodiscard]] static DesktopEntryPlaces standardPlaces();

    /// Starts the first reading. What it leaves out, the log says once.
    DesktopEntries(MainLoop& loop, Log& log, DesktopEntryPlaces places);

    DesktopEntries(const DesktopEntries&) = delete;
    DesktopEntries& operator=(const DesktopEntries&) = delete;

    /// Has the worker bring the entries up to date, unless it is at it already.
    void refresh();

    /// Whether the first reading has ended, or has taken 10 seconds without ending: until then,
    /// nothing is known of what is installed.
    [[nodiscard]] bool isRead() const { return current != nullptr; }

    /// What is installed, as of the last reading; empty until `isRead`. Valid in this turn of the
    /// main loop.
    [[nodiscard]] const DesktopEntryIndex& index() const { return current ? *current : none; }

    /// Calls `callback` on the main loop when `isRead` has become true, and whenever something else
    /// is installed than before.
    [[nodiscard]] Subscription onChange(Task callback);

private:
    void adopt(const DesktopEntryReader::Reading& reading);
    void giveUpWaiting();
    void replace(std::shared_ptr<const DesktopEntryIndex> index);

    MainLoop& loop;
    Log& log;
    const DesktopEntryIndex none;
    const std::shared_ptr<DesktopEntryReader> reader; ///< used by the worker's tasks
    std::shared_ptr<const DesktopEntryIndex> current; ///< null: not read yet
    bool isReading = false;
    CallbackList<> changes;
    std::set<std::filesystem::path> complainedOf;
    Timer deadline;
    Lifetime lifetime;
    SerialQueue worker{1, Seconds(2)}; // its tasks own what they touch
};

} // namespace quorva
