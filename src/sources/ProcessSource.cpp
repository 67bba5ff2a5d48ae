#include "sources/ProcessSource.h"

#include "catalogue/BotSignatureDatabase.h"
#include "detectors/Remedies.h"
#include "sources/FindingTexts.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <utility>

namespace quorva {

const FindingKind processFindings{
    .name = "process",
    .source = DetectionSource::process,
    .notificationCategory = "BOT_DETECTED",
    .notificationPrefix = "bot-detected-",
    .alertRank = 2,
    .objectionRank = 3,
    .sharedPlace = "on my Mac",
    .columns = {"PRODUCT", "CATEGORY", "CONFIDENCE", "PROCESS", "MATCHED BY", "MATCHED VALUE"},
};

const SourceProfile processProfile{
    .name = "process",
    .place = "this computer",
    .allowedAt = "on this computer",
    .chip = "Process",
    .symbol = "desktopcomputer",
    .logName = "process",
    .switchedBy = {},
    .kinds = {&processFindings},
};

namespace {

std::string_view howMatched(DetectionMethod method) {
    switch (method) {
    case DetectionMethod::bundleIdentifier:
        return "application identifier";
    case DetectionMethod::processPath:
        return "executable path";
    default:
        return "name";
    }
}

std::string_view shortHowMatched(DetectionMethod method) {
    switch (method) {
    case DetectionMethod::bundleIdentifier:
        return "application";
    case DetectionMethod::processPath:
        return "program";
    default:
        return "process name";
    }
}

class ProcessFinding final : public Finding {
public:
    explicit ProcessFinding(DetectedBot found) : bot(std::move(found)) {}

    [[nodiscard]] const FindingKind& kind() const override { return processFindings; }
    [[nodiscard]] const std::string& id() const override { return bot.id; }
    [[nodiscard]] std::string allowKey() const override { return bot.signatureId; }

    [[nodiscard]] DetectionEvent record() const override {
        return {.botName = bot.name,
                .category = std::string(rawValue(bot.category)),
                .confidence = bot.confidence,
                .method = std::string(rawValue(bot.method)),
                .detectedAt = bot.detectedAt};
    }
    [[nodiscard]] BotAlert alert() const override {
        return {bot.name, "macOS", std::string(displayName(bot.category))};
    }
    [[nodiscard]] NotificationRequest announcement(Time) const override {
        return notification(kind(), bot.signatureId, processText(bot), NotificationUrgency::normal);
    }
    [[nodiscard]] std::optional<NotificationRequest> farewell() const override {
        auto text = processGoneText(bot);
        return NotificationRequest{.identifier = "bot-gone-" + bot.signatureId,
                                   .title = std::move(text.title),
                                   .body = std::move(text.body),
                                   .urgency = NotificationUrgency::low};
    }
    [[nodiscard]] FindingText text(Time) const override {
        return {.title = bot.name,
                .category = std::string(displayName(bot.category)),
                .match =
                    fmt::format("Matched {}: {}", shortHowMatched(bot.method), bot.matchedValue)};
    }
    [[nodiscard]] nlohmann::ordered_json fields() const override {
        return {{"id", bot.id},
                {"signatureId", bot.signatureId},
                {"name", bot.name},
                {"category", rawValue(bot.category)},
                {"confidence", bot.confidence},
                {"method", rawValue(bot.method)},
                {"processIdentifier", bot.processIdentifier},
                {"matchedValue", bot.matchedValue},
                {"detectedAt", iso8601(bot.detectedAt)}};
    }
    [[nodiscard]] std::vector<std::string> cells(Time) const override {
        return {bot.name,
                std::string(displayName(bot.category)),
                fmt::format("{} %", bot.confidence),
                fmt::format("{}", bot.processIdentifier),
                std::string(howMatched(bot.method)),
                bot.matchedValue};
    }

private:
    const DetectedBot bot;
};

} // namespace

ProcessSource::ProcessSource(Platform& platform)
    : Source(processProfile, platform.loop),
      monitor(platform.loop, platform.applications, platform.processTable),
      applications(platform.applications) {
    monitor.onBotDetected = [this](const DetectedBot& bot) {
        appeared(std::make_shared<ProcessFinding>(bot));
    };
    monitor.onBotDisappeared = [this](const DetectedBot& bot) {
        gone(std::make_shared<ProcessFinding>(bot));
    };
    followList(monitor.detectedBots);
    followState(monitor.coverage);
    followState(monitor.lastScanDate);
}

void ProcessSource::look(Task done) {
    auto scan = [this, done = std::move(done)] {
        monitor.scan();
        done();
    };
    if (applications.isReady())
        return scan();
    subscriptions.push_back(applications.onReady(lifetime.guard(std::move(scan))));
}

/// The first scan comes when applications can be listed, which has a deadline of its own.
void ProcessSource::awaitLook(Task done) {
    if (*monitor.lastScanDate)
        return done();
    subscriptions.push_back(
        monitor.lastScanDate.observeChanges([once = std::make_shared<Task>(std::move(done))] {
            if (const Task task = std::exchange(*once, nullptr))
                task();
        }));
}

SourceState ProcessSource::sight() const {
    using enum SourceState::Kind;
    if (!*monitor.lastScanDate)
        return {looking, {}};
    if (!monitor.coverage->listed)
        return {notAvailable, "The processes of this computer can't be listed: recorders that run "
                              "on it are not seen."};
    return {ok, {}};
}

std::string ProcessSource::detail() const {
    const auto& [listed, seen, denied] = *monitor.coverage;
    if (!listed)
        return remedies::processesCannotBeListed;
    auto detail = fmt::format("looked at {} processes", seen);
    if (denied > 0)
        detail +=
            fmt::format("; {} of them, of other users or protected, can't be looked at", denied);
    return detail;
}

std::string ProcessSource::productNamed(std::string_view allowKey) const {
    return nameOf(BotSignatureDatabase::shared().signatures(), allowKey);
}

Findings ProcessSource::list() const {
    return findingsOf<ProcessFinding>(*monitor.detectedBots);
}

} // namespace quorva
