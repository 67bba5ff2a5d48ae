// The calendar permission window, and the question whether Quorva may read calendars.
#pragma once

#include "base/ChangeWatch.h"
#include "core/AppState.h"
#include "core/CalendarConsentDialog.h"

#include <QObject>

namespace quorva {

/// Main thread only.
class CalendarBridge final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hasAccess READ hasAccess NOTIFY changed)
    Q_PROPERTY(bool lacksCalendars READ lacksCalendars NOTIFY changed)
public:
    /// All must outlive the bridge.
    CalendarBridge(AppState& state, CalendarConsentDialog& consent, MainLoop& loop);

    [[nodiscard]] bool hasAccess() const { return state.permissions.hasCalendarAccess(); }

    [[nodiscard]] bool lacksCalendars() const { return state.permissions.lacksCalendars(); }

    Q_INVOKABLE void openCalendarSettings();
    Q_INVOKABLE void answer(bool isGranted);

signals:
    void changed();

private:
    AppState& state;
    CalendarConsentDialog& consent;
    ChangeWatch watch; // last: follows the fields above
};

} // namespace quorva
