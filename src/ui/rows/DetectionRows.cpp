#include "ui/rows/DetectionRows.h"

#include "core/AllowList.h"
#include "core/NotificationTexts.h"
#include "ui/rows/DisplayText.h"
#include "ui/rows/ViewTexts.h"

#include <QDateTime>
#include <QHash>
#include <QLocale>
#include <algorithm>
#include <chrono>

namespace quorva {

namespace {

QString shortDateAndTime(Time time) {
    using namespace std::chrono;
    const auto moment = QDateTime::fromMSecsSinceEpoch(
        duration_cast<milliseconds>(time.time_since_epoch()).count());
    return QLocale().toString(moment, QLocale::ShortFormat);
}

QString categoryText(BotCategory category) {
    return ours(displayName(category));
}

/// A stored category may be one that this version does not know.
QString categoryText(const std::string& rawCategory) {
    const auto known = fromRawValue<BotCategory>(rawCategory);
    return known ? categoryText(*known) : foreign(rawCategory);
}

} // namespace

std::vector<Row> rowsOf(const std::vector<RecordingIndicatorDetection>& indicators) {
    std::vector<Row> rows;
    for (const auto& each : indicators) {
        const QString label = ours(indicatorLabel(each.indicatorType));
        const QString platform = isolated(each.platformName);
        rows.push_back({.id = ours(each.id),
                        .title = label,
                        .detail = platform,
                        .note = foreign(matchText(each)),
                        .spoken = label + " on " + platform + ", live"});
    }
    return rows;
}

std::vector<Row> rowsOf(const std::vector<ParticipantBotDetection>& participants) {
    std::vector<Row> rows;
    for (const auto& each : participants)
        rows.push_back({.id = ours(each.id),
                        .title = foreign(each.botDisplayName),
                        .subtitle = categoryText(each.category),
                        .detail = isolated(each.platformName),
                        .note = foreign(matchText(each)),
                        .spoken = isolated(each.botDisplayName) + ", " +
                                  categoryText(each.category) + ", " + isolated(each.platformName),
                        .key = ours(allowKey(each))});
    return rows;
}

std::vector<Row> rowsOf(const std::vector<CalendarBotDetection>& detections, Time now) {
    std::vector<Row> rows;
    for (const auto& each : detections) {
        const QString until = ours(each.timeUntilStartLabel(now));
        const QString start = ours(clockTime(each.eventStartDate));
        rows.push_back({.id = ours(each.id),
                        .title = foreign(each.botName),
                        .subtitle = categoryText(each.category),
                        .detail = start,
                        .badge = until,
                        .note = foreign(matchText(each)),
                        .spoken = isolated(each.botName) + ", " + categoryText(each.category) +
                                  ", " + start + ", " + until,
                        .key = ours(allowKey(each))});
    }
    return rows;
}

std::vector<Row> rowsOf(const std::vector<DetectedBot>& bots) {
    std::vector<Row> rows;
    for (const auto& each : bots)
        rows.push_back({.id = ours(each.id),
                        .title = foreign(each.name),
                        .subtitle = categoryText(each.category),
                        .note = foreign(matchText(each)),
                        .spoken = isolated(each.name) + ", " + categoryText(each.category),
                        .key = ours(allowKey(each))});
    return rows;
}

std::vector<Row> rowsOf(const std::vector<DetectionEvent>& history) {
    std::vector<Row> rows;
    QHash<QString, int> same;
    for (const auto& each : history) {
        const QString time = shortDateAndTime(each.detectedAt);
        // Entries have no id of their own: one is made of what tells them apart, and a last number
        // for those that nothing does.
        const QString what = ours(each.botName) + ours(each.source.value_or("")) +
                             QString::number(each.detectedAt.time_since_epoch().count());
        rows.push_back(
            {.id = what + "-" + QString::number(same[what]++),
             .title = foreign(each.botName),
             .subtitle = categoryText(each.category),
             .detail = time,
             .spoken = isolated(each.botName) + ", " + categoryText(each.category) + ", " + time});
    }
    std::reverse(rows.begin(), rows.end());
    return rows;
}

std::vector<Row> rowsOf(const std::vector<ObjectionRecord>& objections) {
    std::vector<Row> rows;
    for (const auto& each : objections) {
        const QString time = shortDateAndTime(each.timestamp);
        const QString trigger =
            each.botName ? "Triggered by: " + isolated(*each.botName) : QString();
        rows.push_back({.id = ours(each.id),
                        .title = foreign(each.templateUsed),
                        .subtitle = trigger,
                        .detail = time,
                        .spoken = isolated(each.templateUsed) + ", " +
                                  (trigger.isEmpty() ? time : trigger + ", " + time)});
    }
    return rows;
}

std::vector<Row> rowsOfAllowed(const std::set<std::string>& keys) {
    std::vector<Row> rows;
    for (const auto& key : keys)
        rows.push_back({.id = ours(key),
                        .title = foreign(AllowList::describe(key)),
                        .spoken = foreign(AllowList::describe(key)),
                        .key = ours(key)});
    return rows;
}

std::vector<Row> rowsOfAccounts(const std::vector<std::string>& names) {
    std::vector<Row> rows;
    for (const auto& name : names) {
        const auto label = accountLabel(name);
        const auto number = QString::number(rows.size()); // two accounts may have one name
        const QString provider = ours(label.provider);
        rows.push_back(
            {.id = ours(name) + "-" + number,
             .title = foreign(name),
             .subtitle = provider,
             .badge = ours(label.symbol),
             .spoken = provider.isEmpty() ? isolated(name) : isolated(name) + ", " + provider});
    }
    return rows;
}

} // namespace quorva
