// The installed applications at one moment, and which program belongs to which of them. A value
// that never changes: made on one thread, read on another.
#pragma once

#include "platform/linux/processes/DesktopEntry.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorva {

/// An entry with the program that its command starts on this computer.
struct InstalledEntry {
    DesktopEntry entry;
    std::optional<EntryProgram> program; ///< with an absolute path, links followed

    bool operator==(const InstalledEntry&) const = default;
};

class DesktopEntryIndex {
public:
    /// Of several entries for one program, one whose command is the program alone comes before one
    /// that gives it arguments (a web page, a mode), then the first in `entries`. Their ids differ.
    explicit DesktopEntryIndex(std::vector<InstalledEntry> entries = {});

    DesktopEntryIndex(const DesktopEntryIndex&) = delete;
    DesktopEntryIndex& operator=(const DesktopEntryIndex&) = delete;

    [[nodiscard]] const std::vector<InstalledEntry>& entries() const { return installed; }

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
    struct Claim {
        const DesktopEntry* entry;
        bool isAlone;
    };
    using Claims = std::unordered_map<std::string, Claim, Hash, std::equal_to<>>;

    static void claim(Claims& claims, std::string key, const Claim& next);

    const std::vector<InstalledEntry> installed;
    std::map<std::string_view, const DesktopEntry*> ids;
    Claims programs;
    Claims ownFolders;
};

} // namespace quorva
