// Parsers for the texts of /proc (proc(5)) and the names of systemd's units (systemd's "Desktop
// Environment Integration"). Pure functions on bytes, callable from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// A process's parent and start.
struct Ancestry {
    std::int32_t parent = 0;
    std::uint64_t startTicks = 0; ///< clock ticks from boot to its start
};

/// The ancestry in the text of /proc/PID/stat; nothing when the text is malformed.
[[nodiscard]] std::optional<Ancestry> parseStat(std::string_view stat);

/// The path that /proc/PID/exe leads to, without the mark that the kernel puts on a deleted file,
/// and with replacement characters in place of invalid UTF-8.
[[nodiscard]] std::string executableOfLink(std::string_view link);

/// The arguments of /proc/PID/cmdline, or the entries of /proc/PID/environ.
[[nodiscard]] std::vector<std::string_view> splitAtZeros(std::string_view bytes);

/// Whether a program is a general interpreter, whose own path says nothing about what it runs: a
/// shell, python3, node, electron, java and the like, with or without a version in the name.
[[nodiscard]] bool isInterpreter(std::string_view executablePath);

/// The script that an interpreter runs: its first argument that is not an option, if it is an
/// absolute path. `arguments` begin with the program's own name. Nothing when it runs code from
/// its command line, a module, or a relative path.
[[nodiscard]] std::optional<std::string>
scriptOfCommand(std::string_view interpreterPath, const std::vector<std::string_view>& arguments);

/// The application of a systemd unit.
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
