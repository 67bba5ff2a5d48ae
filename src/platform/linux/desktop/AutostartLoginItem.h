// Starting at login by an entry in the user's autostart folder (Desktop Application Autostart
// Specification 0.5, Desktop Entry Specification 1.5).
#pragma once

#include "platform/LoginItem.h"

#include <filesystem>
#include <string>

namespace quorva {

/// Status: enabled when the entry is there and neither hidden nor switched off as desktops do it;
/// notFound when it cannot be read. What the user has written into the entry besides is kept; what
/// is no entry at all is set aside. The entry is a small file, read and replaced at once when a
/// person asks for it.
class AutostartLoginItem final : public LoginItem {
public:
    /// `folder` is the configuration folder ($XDG_CONFIG_HOME); `program` the absolute path of what
    /// is to be started.
    AutostartLoginItem(const std::filesystem::path& folder, std::string program);

    /// The user's own folder, and the program that runs here.
    AutostartLoginItem();

    [[nodiscard]] LoginItemStatus status() const override;
    [[nodiscard]] std::optional<std::string> registerItem() override;
    [[nodiscard]] std::optional<std::string> unregisterItem() override;

    /// The path of this program, or of the AppImage that it runs from.
    [[nodiscard]] static std::string ownProgram();

    /// A program as the value of Exec: quoted, its field codes disarmed.
    [[nodiscard]] static std::string execOf(const std::string& program);

private:
    const std::filesystem::path file;
    const std::string program;
};

} // namespace quorva
