#include "ui/rows/DetectionRows.h"

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

/// A category that this version does not know may be stored.
QString categoryText(const std::string& rawCategory) {
    const auto known = fromRawValue<BotCategory>(rawCategory);
    return known ? categoryText(*known) : foreign(rawCategory);
}

} // namespace

std::vector<Row> rowsOf(const Findings& findings, const FindingKind& kind, Time now) {
    std::vector<Row> rows;
    for (const auto& finding : findings) {
        if (&finding->kind() != &kind)
            continue;
        const auto text = finding->text(now);
        QStringList spoken{isolated(text.title)};
        for (const auto& part : {text.category, text.place, text.badge})
            if (!part.empty())
                spoken.push_back(isolated(part));
        rows.push_back({.id = ours(finding->id()),
                        .title = foreign(text.title),
                        .subtitle = ours(text.category),
                        .detail = isolated(text.place),
                        .badge = ours(text.badge),
                        .note = foreign(text.match),
                        .spoken = text.isLive ? spoken.join(" on ") + ", live" : spoken.join(", "),
                        .key = ours(finding->allowKey())});
    }
    return rows;
}

void FindingRows::show(const Findings& findings, Time now) {
    for (const auto* const profile : sourceProfiles)
        for (const auto* const kind : profile->kinds)
            models[kind].show(rowsOf(findings, *kind, now));
}

std::vector<Row> rowsOf(const std::vector<DetectionEvent>& history) {
    std::vector<Row> rows;
    QHash<QString, int> same;
    for (const auto& each : history) {
        const QString time = shortDateAndTime(each.detectedAt);
        // Entries have no id: one is made of the fields that distinguish them, and a number for
        // identical ones.
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

std::vector<Row> rowsOfAllowed(const std::set<std::string>& keys, const Sources& sources) {
    std::vector<Row> rows;
    for (const auto& key : keys)
        rows.push_back({.id = ours(key),
                        .title = foreign(sources.describe(key)),
                        .spoken = foreign(sources.describe(key)),
                        .key = ours(key)});
    return rows;
}

std::vector<Row> rowsOfAccounts(const std::vector<CalendarSource>& accounts) {
    std::vector<Row> rows;
    for (const auto& account : accounts) {
        const auto& name = account.title;
        const auto label = accountLabel(account.provider);
        const auto number = QString::number(rows.size()); // two accounts may have the same name
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
