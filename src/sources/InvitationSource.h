// The invitations in the user's calendars as a source.
#pragma once

#include "detectors/CalendarMonitor.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "sources/Source.h"

namespace quorva {

extern const FindingKind invitationFindings;
extern const SourceProfile invitationProfile;

/// Main thread only.
class InvitationSource final : public Source {
public:
    /// The services must outlive the source.
    InvitationSource(Platform& platform, Preferences& preferences);

    CalendarMonitor monitor;

    /// Takes an invitation off the list, for good. Nothing when none of this identifier is listed.
    void dismiss(std::string_view id);

    [[nodiscard]] bool isWatching() const override { return monitor.isMonitoring && mayLook(); }
    void refresh() override { monitor.scanCalendar(); }
    [[nodiscard]] std::string detail() const override;
    [[nodiscard]] std::string productNamed(std::string_view allowKey) const override;

protected:
    [[nodiscard]] bool mayLook() const override;
    [[nodiscard]] bool mayWait() const override {
        return monitor.authorizationStatus == CalendarAuthorization::restricted;
    }
    void startWatching() override { monitor.startMonitoring(); }
    void stopWatching() override { monitor.stopMonitoring(); }
    void look(Task done) override;
    void awaitLook(Task done) override;
    [[nodiscard]] SourceState sight() const override;
    [[nodiscard]] SourceState obstacle() const override;
    [[nodiscard]] Findings list() const override;
};

} // namespace quorva
