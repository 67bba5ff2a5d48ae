// A detection in the form in which all sources are listed, recorded, announced and reported.
#pragma once

#include "catalogue/Records.h"
#include "platform/NotificationCenter.h"

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// The properties that all findings of one kind share. A source has one kind or more.
struct FindingKind {
    std::string_view name; ///< the key of their list in reports: "participants"
    DetectionSource source;
    std::string_view notificationCategory; ///< decides the notification's buttons
    std::string_view notificationPrefix;   ///< starts the identifiers of their notifications
    int alertRank;                         ///< the first alert is about the kind of the lowest rank
    std::optional<int> objectionRank; ///< the same for objections; absent: cannot be objected to
    std::string_view sharedPlace;     ///< in the recommendation: "in my meeting"; empty: not named
    std::vector<std::string_view> columns; ///< headings of the table that reports print
};

/// The text of the alert panel.
struct BotAlert {
    std::string botName;
    std::string platform;
    std::string category;

    bool operator==(const BotAlert&) const = default;
};

/// The texts of a row in a list. They may come from strangers.
struct FindingText {
    std::string title;
    std::string category; ///< for people; may be empty
    std::string place;    ///< the platform, or the time of day; may be empty
    std::string badge;    ///< a few letters; may be empty
    std::string match;    ///< the text that matched, and how
    bool isLive = false;  ///< whether it goes on for everyone in the meeting
    /// When it was last seen; nothing where it need not be seen again to be true.
    std::optional<Time> lastSeen = {};
};

/// One detection. Never changes. Main thread only.
class Finding {
public:
    virtual ~Finding() = default;

    [[nodiscard]] virtual const FindingKind& kind() const = 0;
    /// Tells the findings of one kind apart.
    [[nodiscard]] virtual const std::string& id() const = 0;
    /// The key under which the allow list hides it; empty: it cannot be hidden.
    [[nodiscard]] virtual std::string allowKey() const { return {}; }
    /// The meeting that an objection is about, if it is known.
    [[nodiscard]] virtual std::optional<std::string> meetingContext() const { return {}; }

    /// The entry of the history.
    [[nodiscard]] virtual DetectionEvent record() const = 0;
    [[nodiscard]] virtual BotAlert alert() const = 0;
    /// The notification that it was found, worded for the time `now`.
    [[nodiscard]] virtual NotificationRequest announcement(Time now) const = 0;
    /// The notification that it is gone; absent: this is not announced.
    [[nodiscard]] virtual std::optional<NotificationRequest> farewell() const { return {}; }

    /// The row in a list, at the time `now`.
    [[nodiscard]] virtual FindingText text(Time now) const = 0;
    /// The fields of the record, enumerations as raw values, dates as ISO 8601 UTC.
    [[nodiscard]] virtual nlohmann::ordered_json fields() const = 0;
    /// The row in a report's table, a text for each column.
    [[nodiscard]] virtual std::vector<std::string> cells(Time now) const = 0;
};

using FindingPtr = std::shared_ptr<const Finding>;
using Findings = std::vector<FindingPtr>;

/// The product's name, as in the history.
[[nodiscard]] inline std::string botName(const Finding& finding) {
    return finding.record().botName;
}

} // namespace quorva
