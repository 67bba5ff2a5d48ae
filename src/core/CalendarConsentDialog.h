// The question whether the program may read the user's calendars: the desktop does not ask it, so
// the program does, and keeps the answer. How the question looks is the user interface's.
#pragma once

#include "base/Published.h"
#include "platform/CalendarStore.h"
#include "platform/Preferences.h"

#include <functional>
#include <vector>

namespace quorva {

/// Main thread only.
class CalendarConsentDialog {
public:
    /// The preferences must outlive this.
    explicit CalendarConsentDialog(Preferences& preferences);

    /// The question is to be shown, and waits for `answer`.
    Published<bool, CalendarConsentDialog> isAsking{false};

    /// The answer kept: not determined, denied or full access.
    [[nodiscard]] CalendarAuthorization status() const;

    /// Asks, unless access has been granted, and calls `done` once: within this call when it need
    /// not ask, else with the answer. A refusal of before is no reason not to ask again: only the
    /// user's own click leads here.
    void request(std::function<void(CalendarStore::AccessAnswer)> done);

    /// What the user has said. Closing the question is a refusal.
    void answer(bool isGranted);

private:
    Preferences& preferences;
    std::vector<std::function<void(CalendarStore::AccessAnswer)>> waiting;
};

} // namespace quorva
