#include "ui/bridges/CalendarBridge.h"

namespace quorva {

CalendarBridge::CalendarBridge(AppState& state_, CalendarConsentDialog& consent_, MainLoop& loop)
    : state(state_), consent(consent_), watch(loop, [this] { emit changed(); }) {
    state.permissions.follow(watch);
}

void CalendarBridge::openCalendarSettings() {
    // Quorva keeps the user's answer itself: where the desktop has no pane for it, the question is
    // asked once more.
    if (!state.openSettingsPane(SettingsPane::calendarPrivacy))
        state.showCalendarPermissionWindow();
}

void CalendarBridge::answer(bool isGranted) {
    consent.answer(isGranted);
}

} // namespace quorva
