// Opens the settings panels of desktops, and addresses.
#pragma once

#include "platform/SystemSettings.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// Main thread only. Programs are started without a shell, in sessions of their own, and outlive
/// this one. Where this program is a confined service of systemd, the user's service manager starts
/// them, so that they are not confined.
class DesktopSettings final : public SystemSettings {
public:
    using Command = std::vector<std::string>;

    /// `desktop` is a list as in XDG_CURRENT_DESKTOP, most specific first: "ubuntu:GNOME".
    explicit DesktopSettings(std::string desktop);

    /// For the desktop of this session.
    DesktopSettings();

    bool open(SettingsPane pane) override;

    /// Opens addresses of the schemes https and appstream only.
    bool openAddress(const std::string& address) override;

    /// The commands that open a pane, in order of preference; the first one installed is used.
    [[nodiscard]] static std::vector<Command> commands(std::string_view desktop, SettingsPane pane);

    /// Whether `address` is valid and has one of those schemes. Pure function.
    [[nodiscard]] static bool mayBeOpened(const std::string& address);

private:
    const std::string desktop;
};

} // namespace quorva
