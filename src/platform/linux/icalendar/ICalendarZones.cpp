#include "platform/linux/icalendar/ICalendarZones.h"

#include "platform/linux/glib/ReadFile.h"

#include <algorithm>
#include <fcntl.h>
#include <string_view>
#include <system_error>

namespace quorva {
namespace {

using GTimeZonePtr = std::unique_ptr<GTimeZone, Release<g_time_zone_unref>>;

class SystemZone final : public CalendarZone {
public:
    explicit SystemZone(GTimeZonePtr zone_) : zone(std::move(zone_)) {}

    std::int64_t offsetAt(WallSeconds local) override {
        // Of two readings of a clock that is set back, the first is in daylight time.
        auto interval = g_time_zone_find_interval(zone.get(), G_TIME_TYPE_DAYLIGHT, local);
        if (interval < 0)
            interval =
                g_time_zone_find_interval(zone.get(), G_TIME_TYPE_DAYLIGHT, local - secondsOfDay);
        return interval < 0 ? 0 : g_time_zone_get_offset(zone.get(), interval);
    }

private:
    GTimeZonePtr zone;
};

/// Whether the system's database has a zone of this name. GLib accepts any file as one.
bool isInDatabase(const std::string& name) {
    const FileDescriptor fd(
        ::open(("/usr/share/zoneinfo/" + name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    constexpr std::string_view magic = "TZif";
    std::error_code error;
    return fd && readUpTo(fd, magic.size(), error) == magic;
}

CalendarZonePtr systemZone(const std::string& identifier) {
    GTimeZonePtr zone(g_time_zone_new_identifier(identifier.c_str()));
    return zone ? std::make_shared<SystemZone>(std::move(zone)) : nullptr;
}

/// The zone of a name that is an offset, such as "GMT+05:30" and "UTC-3"; null for others.
CalendarZonePtr zoneOfOffset(std::string_view name) {
    if (!name.starts_with("GMT") && !name.starts_with("UTC"))
        return nullptr;
    const std::string offset(name.substr(3));
    const bool isOffset = offset.size() >= 2 && (offset[0] == '+' || offset[0] == '-') &&
                          offset.find_first_not_of("0123456789:", 1) == std::string::npos;
    return isOffset ? systemZone(offset) : nullptr;
}

/// A zone that a file defines. The onsets that its rules produce are computed a few years at a
/// time, when they are needed.
class FileZone final : public CalendarZone {
public:
    explicit FileZone(std::vector<ZoneObservance> observances_)
        : observances(std::move(observances_)) {
        for (const auto& observance : observances) {
            dated.push_back({observance.start, observance.offsetFrom, observance.offsetTo});
            for (const auto date : observance.dates)
                dated.push_back({date, observance.offsetFrom, observance.offsetTo});
        }
        sort(dated);
    }

    std::int64_t offsetAt(WallSeconds local) override {
        const auto* const byDate = latest(dated, local);
        const auto* const byRule = latest(ruledAround(local), local);
        if (byDate && byRule)
            return byRule->at >= byDate->at ? byRule->to : byDate->to;
        return byRule ? byRule->to : byDate ? byDate->to : dated.front().from;
    }

private:
    struct Onset {
        WallSeconds at; ///< on the clock before it
        std::int64_t from;
        std::int64_t to;
    };
    using Onsets = std::vector<Onset>;
    static constexpr WallSeconds span = 366 * secondsOfDay;
    static constexpr std::size_t maxOnsets = 1'000; // of one observance in four years
    static constexpr std::size_t maxSpans = 50;

    static void sort(Onsets& onsets) {
        std::sort(onsets.begin(), onsets.end(),
                  [](const Onset& a, const Onset& b) { return a.at < b.at; });
    }

    /// The last onset before a reading of the clock. A clock that is set forward at `at` next shows
    /// at + (to - from).
    static const Onset* latest(const Onsets& onsets, WallSeconds local) {
        const auto next =
            std::partition_point(onsets.begin(), onsets.end(), [&](const Onset& onset) {
                return onset.at + std::max<std::int64_t>(0, onset.to - onset.from) <= local;
            });
        return next == onsets.begin() ? nullptr : &*std::prev(next);
    }

    const Onsets& ruledAround(WallSeconds local) {
        const auto key = local / span;
        if (const auto found = ruled.find(key); found != ruled.end())
            return found->second;
        if (ruled.size() >= maxSpans)
            ruled.clear();
        auto& onsets = ruled[key];
        for (const auto& observance : observances)
            if (observance.rule)
                addOnsets(observance, *observance.rule, (key + 2) * span, onsets);
        sort(onsets);
        return onsets;
    }

    /// Adds the onsets of the four years up to `to`, or of the last four years of a rule that ended
    /// before.
    void addOnsets(const ZoneObservance& observance, const RecurrenceRule& rule, WallSeconds to,
                   Onsets& onsets) {
        RecurrenceRule::Request request{.start = observance.start, .to = to};
        if (const auto& until = rule.until()) {
            request.until = until->seconds + (until->isUtc ? observance.offsetFrom : 0) +
                            (until->isDate ? secondsOfDay - 1 : 0);
        }
        request.from = std::min(to, request.until.value_or(to)) - 4 * span;
        std::size_t count = 0;
        // Without the budget to finish, the onsets found so far have to do.
        (void)rule.expand(
            request,
            [&](WallSeconds at) {
                onsets.push_back({at, observance.offsetFrom, observance.offsetTo});
                return ++count < maxOnsets;
            },
            budget);
    }

    const std::vector<ZoneObservance> observances;
    Onsets dated;
    std::map<WallSeconds, Onsets> ruled;
    ExpansionBudget budget;
};

class Utc final : public CalendarZone {
public:
    std::int64_t offsetAt(WallSeconds) override { return 0; }
};

} // namespace

CalendarZonePtr zoneOfName(std::string_view name) {
    constexpr std::size_t maxNameLength = 100;
    while (name.starts_with('/'))
        name.remove_prefix(1);
    const bool isName =
        name.size() <= maxNameLength && std::all_of(name.begin(), name.end(), [](char c) {
            return g_ascii_isalnum(c) || c == '/' || c == '_' || c == '+' || c == '-' || c == ':' ||
                   c == '.';
        });
    if (!isName || name.find("..") != std::string_view::npos)
        return nullptr;
    if (auto zone = zoneOfOffset(name))
        return zone;
    while (!name.empty()) {
        if (isInDatabase(std::string(name)))
            return systemZone(std::string(name));
        const auto slash = std::min(name.find('/'), name.size() - 1);
        name.remove_prefix(slash + 1);
    }
    return nullptr;
}

UserZone userZone() {
    // GLib reads /etc/localtime once per process and would miss a later change: read it here first.
    std::array<char, 256> link{};
    const auto length = ::readlink("/etc/localtime", link.data(), link.size());
    constexpr std::string_view database = "zoneinfo/";
    const std::string_view target(link.data(),
                                  static_cast<std::size_t>(std::max<ssize_t>(0, length)));
    const auto at = target.find(database);
    if (!g_getenv("TZ") && at != std::string_view::npos)
        if (const std::string name(target.substr(at + database.size())); isInDatabase(name))
            return {systemZone(name), name};
    GTimeZonePtr local(g_time_zone_new_local());
    const std::string name = g_time_zone_get_identifier(local.get());
    return {std::make_shared<SystemZone>(std::move(local)), name};
}

CalendarZonePtr utcZone() {
    return std::make_shared<Utc>();
}

CalendarZonePtr zoneOfObservances(std::vector<ZoneObservance> observances) {
    if (observances.empty())
        return nullptr;
    return std::make_shared<FileZone>(std::move(observances));
}

} // namespace quorva
