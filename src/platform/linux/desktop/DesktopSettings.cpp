#include "platform/linux/desktop/DesktopSettings.h"

#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <sys/prctl.h>
#include <unistd.h>
#include <utility>

namespace quorva {
namespace {

using Command = DesktopSettings::Command;

struct Panel {
    std::string_view desktop; ///< as in XDG_CURRENT_DESKTOP
    SettingsPane pane;
    std::array<const char*, 2> words; ///< program and argument
};

// clang-format off
constexpr auto accessibility = SettingsPane::accessibility;
constexpr auto accounts      = SettingsPane::internetAccounts;
constexpr auto privacy       = SettingsPane::calendarPrivacy;
constexpr Panel panels[] = {
    {"GNOME",      accessibility, {"gnome-control-center",          "universal-access"}},
    {"GNOME",      accounts,      {"gnome-control-center",          "online-accounts"}},
    {"GNOME",      privacy,       {"gnome-control-center",          "applications"}},
    {"GNOME",      privacy,       {"gnome-control-center",          "privacy"}},
    {"Unity",      accessibility, {"unity-control-center",          "universal-access"}},
    {"Unity",      accounts,      {"unity-control-center",          "credentials"}},
    {"KDE",        accessibility, {"systemsettings",                "kcm_access"}},
    {"KDE",        accessibility, {"systemsettings5",               "kcm_access"}},
    {"KDE",        accounts,      {"systemsettings",                "kcm_kaccounts"}},
    {"KDE",        accounts,      {"systemsettings5",               "kcm_kaccounts"}},
    {"XFCE",       accessibility, {"xfce4-accessibility-settings",  nullptr}},
    {"MATE",       accessibility, {"mate-at-properties",            nullptr}},
    {"X-Cinnamon", accessibility, {"cinnamon-settings",             "accessibility"}},
    {"X-Cinnamon", accounts,      {"cinnamon-settings",             "online-accounts"}},
    {"X-Cinnamon", accounts,      {"gnome-online-accounts-gtk",     nullptr}},
    {"XFCE",       accounts,      {"gnome-online-accounts-gtk",     nullptr}},
    {"MATE",       accounts,      {"gnome-online-accounts-gtk",     nullptr}},
    {"Budgie",     accessibility, {"budgie-control-center",         "universal-access"}},
    {"Budgie",     accounts,      {"budgie-control-center",         "online-accounts"}},
};
// clang-format on

std::vector<std::string_view> namesOf(std::string_view desktop) {
    std::vector<std::string_view> names;
    while (!desktop.empty()) {
        const auto length = std::min(desktop.find(':'), desktop.size());
        names.push_back(desktop.substr(0, length));
        desktop.remove_prefix(std::min(length + 1, desktop.size()));
    }
    return names;
}

/// Whether this program runs as a confined service of systemd, as quorva.service does.
bool isConfined() {
    return ::prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 1 && std::getenv("INVOCATION_ID") != nullptr;
}

/// A browser or a settings program would inherit the limits of this service, such as having no
/// network, and would end with it. Started by the user's service manager, it does neither.
Command unconfined(Command command) {
    Command outside{"systemd-run", "--user", "--quiet", "--collect", "--property=ExitType=cgroup",
                    "--"};
    std::ranges::move(command, std::back_inserter(outside));
    return outside;
}

bool start(Command command) {
    if (isConfined())
        command = unconfined(std::move(command));
    std::vector<gchar*> words;
    for (const auto& word : command)
        words.push_back(const_cast<gchar*>(word.c_str())); // GLib does not write to them
    words.push_back(nullptr);
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL |
                                                G_SPAWN_STDERR_TO_DEV_NULL);
    const auto intoItsOwnSession = +[](gpointer) { (void)::setsid(); };
    return g_spawn_async(nullptr, words.data(), nullptr, flags, intoItsOwnSession, nullptr, nullptr,
                         nullptr) != FALSE;
}

} // namespace

DesktopSettings::DesktopSettings(std::string desktop_) : desktop(std::move(desktop_)) {}

DesktopSettings::DesktopSettings()
    : DesktopSettings([] {
          const char* const present = std::getenv("XDG_CURRENT_DESKTOP");
          return std::string(present != nullptr ? present : "");
      }()) {}

std::vector<Command> DesktopSettings::commands(std::string_view desktop, SettingsPane pane) {
    std::vector<Command> found;
    for (const auto name : namesOf(desktop))
        for (const auto& panel : panels)
            if (panel.desktop == name && panel.pane == pane) {
                auto& command = found.emplace_back(Command{panel.words[0]});
                if (panel.words[1] != nullptr)
                    command.emplace_back(panel.words[1]);
            }
    return found;
}

bool DesktopSettings::open(SettingsPane pane) {
    for (const auto& command : commands(desktop, pane))
        if (GCharsPtr(g_find_program_in_path(command.front().c_str())) && start(command))
            return true;
    return false;
}

bool DesktopSettings::mayBeOpened(const std::string& address) {
    const bool isPlain = std::ranges::all_of(address, [](char character) {
        return g_ascii_isgraph(character) != FALSE; // others are percent-encoded
    });
    const GCharsPtr scheme(g_uri_parse_scheme(address.c_str()));
    if (!isPlain || !scheme || g_uri_is_valid(address.c_str(), G_URI_FLAGS_NONE, nullptr) == FALSE)
        return false;
    const std::string_view name = scheme.get();
    return name == "https" || name == "appstream";
}

bool DesktopSettings::openAddress(const std::string& address) {
    if (!mayBeOpened(address))
        return false;
    const GCharsPtr scheme(g_uri_parse_scheme(address.c_str()));
    const GObjectPtr<GAppInfo> program(g_app_info_get_default_for_uri_scheme(scheme.get()));
    if (!program)
        return false;
    if (isConfined())
        return start({"gio", "open", address});
    GList only{.data = const_cast<gchar*>(address.c_str())};
    g_app_info_launch_uris_async(program.get(), &only, nullptr, nullptr, nullptr, nullptr);
    return true;
}

} // namespace quorva
