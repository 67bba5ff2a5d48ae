// Asks the user whether the program may read the calendars, and keeps the answer. The desktop does
// not ask, so the program does. The user interface shows the question.
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

    /// Whether the question is shown and waits for `answer`.
    Published<bool, CalendarConsentDialog> isAsking{false};

    /// The stored answer: not determined, denied or full access.
    [[nodiscard]] CalendarAuthorization status() const;

    /// Calls `done` once: within this call if access was granted before, else when the user has
    /// answered. An earlier refusal does not prevent the question, because only a click of the user
    /// leads here.
    void request(std::function<void(CalendarStore::AccessAnswer)> done);

    /// Stores the user's answer and passes it on. Closing the question is a refusal.
    void answer(bool isGranted);

private:
    Preferences& preferences;
    std::vector<std::function<void(CalendarStore::AccessAnswer)>> waiting;
};

} // namespace quorva
