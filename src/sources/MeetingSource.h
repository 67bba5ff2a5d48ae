// The windows of meetings as a source: note-takers among the participants, and banners.
#pragma once

#include "detectors/MeetingParticipantMonitor.h"
#include "platform/Platform.h"
#include "sources/Source.h"

namespace quorva {

extern const SourceProfile meetingProfile;

/// Main thread only.
class MeetingSource final : public Source {
public:
    /// The services must outlive the source.
    explicit MeetingSource(Platform& platform);

    MeetingParticipantMonitor monitor;

    [[nodiscard]] bool isWatching() const override { return monitor.isMonitoring; }
    void refresh() override { monitor.performScan(); }
    [[nodiscard]] std::string detail() const override;
    [[nodiscard]] std::string productNamed(std::string_view) const override { return {}; }

protected:
    [[nodiscard]] bool mayLook() const override { return monitor.hasAccessibilityPermission; }
    void startWatching() override { monitor.startMonitoring(); }
    void stopWatching() override { monitor.stopMonitoring(); }
    void look(Task done) override;
    void awaitLook(Task done) override;
    [[nodiscard]] SourceState sight() const override;
    [[nodiscard]] SourceState obstacle() const override;
    [[nodiscard]] Findings list() const override;

private:
    [[nodiscard]] bool canListProcesses() const;

    Applications& applications;
    AccessibilityTree& tree;
    ProcessTable& processTable;
    Task awaited; ///< what follows the first look
};

} // namespace quorva
