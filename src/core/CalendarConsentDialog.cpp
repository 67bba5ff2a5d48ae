#include "core/CalendarConsentDialog.h"

#include "platform/PreferenceKeys.h"

#include <utility>

namespace quorva {

CalendarConsentDialog::CalendarConsentDialog(Preferences& preferences_)
    : preferences(preferences_) {}

CalendarAuthorization CalendarConsentDialog::status() const {
    const auto kept = read(preferences, preferenceKeys::calendarAuthorization);
    for (const auto answer : {CalendarAuthorization::denied, CalendarAuthorization::fullAccess})
        if (kept == static_cast<std::int64_t>(answer))
            return answer;
    return CalendarAuthorization::notDetermined;
}

void CalendarConsentDialog::request(std::function<void(CalendarStore::AccessAnswer)> done) {
    if (status() == CalendarAuthorization::fullAccess)
        return done({.granted = true, .error = std::nullopt});
    waiting.push_back(std::move(done));
    if (!isAsking)
        isAsking = true;
}

void CalendarConsentDialog::answer(bool isGranted) {
    if (!isAsking)
        return;
    preferences.set(preferenceKeys::calendarAuthorization.name,
                    static_cast<std::int64_t>(isGranted ? CalendarAuthorization::fullAccess
                                                        : CalendarAuthorization::denied));
    isAsking = false;
    for (const auto& done : std::exchange(waiting, {}))
        done({.granted = isGranted, .error = std::nullopt});
}

} // namespace quorva
