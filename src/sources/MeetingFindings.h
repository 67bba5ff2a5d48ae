// What is found in the windows of meetings.
#pragma once

#include "catalogue/Records.h"
#include "sources/Finding.h"

#include <utility>

namespace quorva {

extern const FindingKind participantFindings;
extern const FindingKind bannerFindings;

/// A note-taker among the participants.
class ParticipantFinding final : public Finding {
public:
    explicit ParticipantFinding(ParticipantBotDetection found) : bot(std::move(found)) {}

    [[nodiscard]] const FindingKind& kind() const override { return participantFindings; }
    [[nodiscard]] const std::string& id() const override { return bot.id; }
    [[nodiscard]] std::string allowKey() const override { return bot.botDisplayName; }
    [[nodiscard]] std::optional<std::string> meetingContext() const override {
        return bot.platformName;
    }
    [[nodiscard]] DetectionEvent record() const override;
    [[nodiscard]] BotAlert alert() const override;
    [[nodiscard]] NotificationRequest announcement(Time now) const override;
    [[nodiscard]] FindingText text(Time now) const override;
    [[nodiscard]] nlohmann::ordered_json fields() const override;
    [[nodiscard]] std::vector<std::string> cells(Time now) const override;

private:
    const ParticipantBotDetection bot;
};

/// A banner that tells of a recording or an assistant.
class BannerFinding final : public Finding {
public:
    explicit BannerFinding(RecordingIndicatorDetection found) : banner(std::move(found)) {}

    [[nodiscard]] const FindingKind& kind() const override { return bannerFindings; }
    [[nodiscard]] const std::string& id() const override { return banner.id; }
    [[nodiscard]] DetectionEvent record() const override;
    [[nodiscard]] BotAlert alert() const override;
    [[nodiscard]] NotificationRequest announcement(Time now) const override;
    [[nodiscard]] FindingText text(Time now) const override;
    [[nodiscard]] nlohmann::ordered_json fields() const override;
    [[nodiscard]] std::vector<std::string> cells(Time now) const override;

private:
    const RecordingIndicatorDetection banner;
};

} // namespace quorva
