// The entry in the user's autostart folder that starts the program at login (Desktop Application
// Autostart Specification 0.5, Desktop Entry Specification 1.5).
#pragma once

#include "platform/LoginItem.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorva {

/// Waits for the disk: not for the main thread. One thread at a time.
class AutostartEntry {
public:
    /// `folder` is the configuration folder ($XDG_CONFIG_HOME), `program` the absolute path of the
    /// program to be started.
    AutostartEntry(const std::filesystem::path& folder, std::string program);

    /// Enabled when the entry is there and neither hidden nor switched off as desktops do it;
    /// notFound when the file can't be read or is not an entry.
    [[nodiscard]] LoginItemStatus status() const;

    /// Has the entry start the program. Returns nothing on success, else the reason for people.
    /// Whatever else the user has written into the entry is kept; a file that is not an entry is
    /// set aside; a file that needs no change is not written.
    [[nodiscard]] std::optional<std::string> enable() const;

    /// Removes the file. Returns nothing on success, also where there was none, else the reason.
    [[nodiscard]] std::optional<std::string> remove() const;

    /// The path of this program, or of the AppImage that it runs from. Any thread.
    [[nodiscard]] static std::string ownProgram();

    /// A program as the value of Exec: quoted, its field codes escaped. Pure function.
    [[nodiscard]] static std::string execOf(const std::string& program);

private:
    const std::filesystem::path file;
    const std::string program;
};

} // namespace quorva
