// The texts of /proc and the names of systemd's units, read from bytes: no I/O here. Pure
// functions, callable from any thread. Formats: proc(5); systemd's "Desktop Environment
// Integration" for units.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// Where a process comes from.
struct Ancestry {
    std::int32_t parent = 0;
    std::uint64_t startTicks = 0; ///< clock ticks from boot to its start
};

/// The fields of /proc/PID/stat that are needed; nothing when the text is not of its form.
[[nodiscard]] std::optional<Ancestry> parseStat(std::string_view stat);

/// The path that /proc/PID/exe leads to, without the mark that the kernel puts on a deleted file,
/// and with replacement characters in place of invalid UTF-8.
[[nodiscard]] std::string executableOfLink(std::string_view link);

/// The arguments of /proc/PID/cmdline, or the entries of /proc/PID/environ.
[[nodiscard]] std::vector<std::string_view> splitAtZeros(std::string_view bytes);

/// Whether a program only runs what it is given, so that its own path says nothing: a shell,
/// python3, node, electron, java and their like, with or without a version in the name.
[[nodiscard]] bool isInterpreter(std::string_view executablePath);

/// The script that an interpreter was told to run: the first argument that is no option, when it is
/// an absolute path. `arguments` begin with the program's own name. Nothing when it runs code from
/// its command line, a module, or a relative path.
[[nodiscard]] std::optional<std::string>
scriptOfCommand(std::string_view interpreterPath, const std::vector<std::string_view>& arguments);

/// The application that a systemd unit was made for.
struct UnitApplication {
    enum class Kind { desktopEntry, snap };
    Kind kind = Kind::desktopEntry;
    std::string
        id; ///< the desktop entry's id (for Flatpak the same as its own), or the snap's name

    bool operator==(const UnitApplication&) const = default;
};

/// The application of "app[-LAUNCHER]-ID-RANDOM.scope", "app[-LAUNCHER]-ID[@RANDOM].service" or
/// "snap.NAME.…", unescaped, with replacement characters in place of invalid UTF-8; nothing for any
/// other unit.
[[nodiscard]] std::optional<UnitApplication> applicationOfUnit(std::string_view unitName);

/// A readable name for an AppImage: its file name without the ending, version and architecture.
[[nodiscard]] std::string nameOfAppImage(std::string_view path);

} // namespace quorva
