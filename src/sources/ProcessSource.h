// The processes of this computer as a source.
#pragma once

#include "detectors/ProcessMonitor.h"
#include "platform/Platform.h"
#include "sources/Source.h"

namespace quorva {

extern const FindingKind processFindings;
extern const SourceProfile processProfile;

/// Main thread only.
class ProcessSource final : public Source {
public:
    /// The services must outlive the source.
    explicit ProcessSource(Platform& platform);

    ProcessMonitor monitor;

    [[nodiscard]] bool isWatching() const override { return monitor.isMonitoring; }
    void refresh() override { monitor.forceRescan(); }
    [[nodiscard]] std::string detail() const override;
    [[nodiscard]] std::string productNamed(std::string_view allowKey) const override;

protected:
    [[nodiscard]] bool mayLook() const override { return true; }
    void startWatching() override { monitor.startMonitoring(); }
    void stopWatching() override { monitor.stopMonitoring(); }
    void look(Task done) override;
    void awaitLook(Task done) override;
    [[nodiscard]] SourceState sight() const override;
    [[nodiscard]] SourceState obstacle() const override { return {}; }
    [[nodiscard]] Findings list() const override;

private:
    Applications& applications;
};

} // namespace quorva
