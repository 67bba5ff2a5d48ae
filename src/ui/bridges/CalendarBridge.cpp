#include "ui/bridges/CalendarBridge.h"

namespace quorva {

CalendarBridge::CalendarBridge(AppState& state_, CalendarConsentDialog& consent_, MainLoop& loop)
    : state(state_), consent(consent_), watch(loop, [this] { emit changed(); }) {
    state.permissions.follow(watch);
}

void CalendarBridge::openCalendarSettings() {
    // Quorva keeps the user's answer itself. If the desktop has no settings pane for it, ask again.
    if (!state.openSettingsPane(SettingsPane::calendarPrivacy))
        state.showCalendarPermissionWindow();
}

void CalendarBridge::answer(bool isGranted) {
    consent.answer(isGranted);
}

} // namespace quorva
