// The applications that are installed, as their desktop entries describe them (freedesktop.org
// Desktop Entry Specification 1.5), with an index from programs to entries. Main thread only.
#pragma once

#include "base/MainLoop.h"
#include "platform/Log.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorva {

struct DesktopEntry {
    std::string id; ///< file name below the folder of entries, "/" as "-", without ".desktop"
    std::optional<std::string> name;  ///< in the user's language
    std::vector<std::string> command; ///< arguments of Exec; empty when there is none
    bool isHidden = false;            ///< deleted by the user, or no application

    bool operator==(const DesktopEntry&) const = default;
};

/// The entry that the bytes of a .desktop file describe. Nothing when they are no key file with a
/// group "Desktop Entry". A pure function; languages are taken from the environment, as GLib does.
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(std::string id, std::string_view bytes);

/// What an entry's command starts.
struct EntryProgram {
    std::string path;    ///< absolute, or a name to look for in the search path
    bool isAlone = true; ///< no arguments of its own: it stands for the program itself
};

/// The program of a command: past env(1) and its assignments, and the script where an interpreter
/// is started. Nothing when the command starts no program of the entry's own (flatpak, snap, xterm,
/// …).
[[nodiscard]] std::optional<EntryProgram> programOf(const std::vector<std::string>& command);

class DesktopEntries {
public:
    struct Places {
        std::vector<std::filesystem::path> folders;    ///< of entries; an earlier one's entry wins
        std::vector<std::filesystem::path> searchPath; ///< for commands without a path
    };

    /// The folders "applications" of $XDG_DATA_HOME, $XDG_DATA_DIRS and of Flatpak's and Snap's
    /// exports, and $PATH.
    [[nodiscard]] static Places standardPlaces();

    /// Reads nothing yet. An entry that cannot be read, or is over 1 MiB, is left out, and the log
    /// says so once.
    DesktopEntries(MainLoop& loop, Log& log, Places places);

    /// Brings the entries up to date: reads them when a folder has changed, and every 5 minutes.
    /// Pointers from earlier calls are void afterwards.
    void refresh();

    /// The entry with this id; null when there is none.
    [[nodiscard]] const DesktopEntry* byId(std::string_view id) const;

    /// The entry of a Snap by the snap's name; null when there is none.
    [[nodiscard]] const DesktopEntry* bySnap(std::string_view snap) const;

    /// The entry whose command starts this program, or whose own folder below /opt, /usr/lib,
    /// /usr/local/lib or /usr/share the program is in; null when there is none.
    [[nodiscard]] const DesktopEntry* byProgram(std::string_view program) const;

private:
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    template <typename Value>
    using TextMap = std::unordered_map<std::string, Value, Hash, std::equal_to<>>;

    struct Claim {
        const DesktopEntry* entry;
        bool isAlone;
    };
    using FolderStamps = std::map<std::filesystem::path, std::int64_t>; ///< modification time, ns

    [[nodiscard]] bool isOutdated() const;
    void readAll();
    void readFolder(const std::filesystem::path& folder, const std::string& idPrefix, int depth,
                    std::set<std::pair<std::uint64_t, std::uint64_t>>& visited);
    void readEntry(const std::filesystem::path& file, const std::string& id);
    void indexPrograms();
    [[nodiscard]] std::optional<std::string> resolve(const std::string& program) const;
    void complainOnce(const std::filesystem::path& file, std::string_view reason);

    MainLoop& loop;
    Log& log;
    const Places places;
    std::map<std::string, DesktopEntry, std::less<>> entries;
    std::vector<std::string> order; ///< ids in the order in which they were found
    TextMap<Claim> programs;
    TextMap<Claim> ownFolders;
    FolderStamps stamps;
    std::optional<Time> lastRead;
    std::set<std::filesystem::path> complainedOf;
};

} // namespace quorva
