#include "ui/bridges/PaneHelp.h"

namespace quorva {

void PaneHelp::openInternetAccounts(AppState& state) {
    accounts.clear();
    if (!state.openInternetAccountsSettings())
        accounts = "This desktop has no settings for online accounts that Quorva could open. Add "
                   "the account in your calendar application, such as Evolution or GNOME "
                   "Calendar.";
}

void PaneHelp::openAccessibilitySettings(AppState& state) {
    accessibility.clear();
    if (state.openSettingsPane(SettingsPane::accessibility))
        return;
    state.permissions.requestAccessibilityPermission();
    accessibility = "This desktop has no accessibility settings that Quorva could open. It has "
                    "asked for assistive technologies to be switched on. Should nothing change, "
                    "switch them on in your desktop's own settings.";
}

} // namespace quorva
