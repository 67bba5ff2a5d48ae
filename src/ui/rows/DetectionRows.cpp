#include "ui/rows/DetectionRows.h"

#include "core/SightNotice.h"
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

/// When it was last seen, if that is a while ago; otherwise empty.
std::string lastSeenText(const FindingText& text, Time now) {
    constexpr Seconds aWhile{60.0}; // windows are looked at every few seconds
    if (!text.lastSeen || now - *text.lastSeen < aWhile)
        return {};
    return "last seen " + relativeTime(*text.lastSeen, now);
}

Row noticeRow(const std::string& text, const QString& time) {
    return {.title = "Not seen",
            .subtitle = foreign(text),
            .detail = time,
            .badge = "eye.slash.fill",
            .spoken = "Not seen, " + isolated(text) + ", " + time};
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
        const auto lastSeen = ours(lastSeenText(text, now));
        const bool isLive = text.isLive && lastSeen.isEmpty();
        const QString ending = isLive ? ", live" : lastSeen.isEmpty() ? "" : ", " + lastSeen;
        rows.push_back({.id = ours(finding->id()),
                        .title = foreign(text.title),
                        .subtitle = ours(text.category),
                        .detail = isolated(text.place),
                        .badge = isLive               ? "LIVE"
                                 : lastSeen.isEmpty() ? ours(text.badge)
                                                      : lastSeen,
                        .note = foreign(text.match),
                        .spoken = spoken.join(text.isLive ? " on " : ", ") + ending,
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
        const auto notice = sightLostText(each);
        auto& row =
            rows.emplace_back(notice ? noticeRow(*notice, time)
                                     : Row{.title = foreign(each.botName),
                                           .subtitle = categoryText(each.category),
                                           .detail = time,
                                           .spoken = isolated(each.botName) + ", " +
                                                     categoryText(each.category) + ", " + time});
        row.id = what + "-" + QString::number(same[what]++);
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
