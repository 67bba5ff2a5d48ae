// Desktop entries: the files that describe the installed applications (freedesktop.org Desktop
// Entry Specification 1.5). Pure functions on their bytes, callable from any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

struct DesktopEntry {
    std::string id; ///< file name below the folder of entries, "/" as "-", without ".desktop"
    std::optional<std::string> name;  ///< in the user's language
    std::vector<std::string> command; ///< arguments of Exec; empty when there is none
    bool isHidden = false;            ///< deleted by the user, or not an application

    bool operator==(const DesktopEntry&) const = default;
};

/// The entry that the bytes of a .desktop file describe. Nothing when they are not a key file with
/// a group "Desktop Entry". The language is taken from the environment, as GLib does.
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(std::string id, std::string_view bytes);

/// The program that an entry's command starts.
struct EntryProgram {
    std::string path;    ///< absolute, or a name to look for in the search path
    bool isAlone = true; ///< without arguments of its own: the entry stands for the program itself

    bool operator==(const EntryProgram&) const = default;
};

/// The program of a command: past env(1) and its assignments, and the script where an interpreter
/// is started. Nothing when the command starts another application's program (flatpak, snap, xterm,
/// …).
[[nodiscard]] std::optional<EntryProgram> programOf(const std::vector<std::string>& command);

/// Whether a program only starts what it is told to, so that an entry that names it does not
/// describe it: flatpak, sudo, xterm and their like.
[[nodiscard]] bool isLauncher(std::string_view program);

} // namespace quorva
