// The settings panels of the desktops, and the programs that open addresses.
#pragma once

#include "platform/SystemSettings.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// Main thread only. What is started lives on without this program: in a session of its own, with
/// no shell in between. Where this program is a confined service of systemd, the user's service
/// manager starts it, free of what confines this one.
class DesktopSettings final : public SystemSettings {
public:
    using Command = std::vector<std::string>;

    /// `desktop` is a list as in XDG_CURRENT_DESKTOP, most specific first: "ubuntu:GNOME".
    explicit DesktopSettings(std::string desktop);

    /// The present desktop.
    DesktopSettings();

    bool open(SettingsPane pane) override;

    /// Opens addresses of the schemes https and appstream only.
    bool openAddress(const std::string& address) override;

    /// What opens a pane, in the order of preference; the first that is installed is used.
    [[nodiscard]] static std::vector<Command> commands(std::string_view desktop, SettingsPane pane);

    /// Whether an address is one that may be opened.
    [[nodiscard]] static bool mayBeOpened(const std::string& address);

private:
    const std::string desktop;
};

} // namespace quorva
