#include "ui/rows/ViewTexts.h"

#include <fmt/format.h>

namespace quorva {

namespace {

std::string joined(const std::vector<std::string_view>& parts, std::string_view separator) {
    return fmt::format("{}", fmt::join(parts, separator));
}

} // namespace

std::string relativeTime(Time then, Time now) {
    using namespace std::chrono;
    const auto passed = duration_cast<seconds>(now - then).count();
    if (passed < 5) // scans run every 3 seconds: a count of seconds would flicker
        return "now";
    if (passed < 60)
        return fmt::format("{} sec. ago", passed);
    if (passed < 60 * 60)
        return fmt::format("{} min. ago", passed / 60);
    if (passed < 24 * 60 * 60)
        return fmt::format("{} hr. ago", passed / (60 * 60));
    const auto days = passed / (24 * 60 * 60);
    return fmt::format("{} day{} ago", days, days == 1 ? "" : "s");
}

ChipLook chipLook(const SourceState& state) {
    if (state.isLimited())
        return ChipLook::limited;
    return state.kind == SourceState::Kind::off ? ChipLook::off : ChipLook::on;
}

AccountLabel accountLabel(CalendarProvider provider) {
    switch (provider) {
    case CalendarProvider::google:
        return {"g.circle.fill", "Google"};
    case CalendarProvider::exchange:
        return {"envelope.fill", "Outlook/Exchange"};
    case CalendarProvider::iCloud:
        return {"icloud.fill", "iCloud"};
    case CalendarProvider::other:
        break;
    }
    return {"calendar", ""};
}

std::string coverageLine(bool hasGoogle, bool hasExchange, bool hasICloud) {
    std::vector<std::string_view> missing;
    if (!hasGoogle)
        missing.emplace_back("Google");
    if (!hasExchange)
        missing.emplace_back("Outlook/Exchange");
    if (!hasICloud)
        missing.emplace_back("iCloud");
    if (missing.empty())
        return "Maximum coverage: all calendar types connected";
    return "Add " + joined(missing, " and ") + " for full coverage";
}

std::string foundText(std::size_t count) {
    return fmt::format("{} Bot{} Found", count, count == 1 ? "" : "s");
}

std::string scannedText(const std::vector<std::string_view>& sources, bool isClear) {
    if (sources.empty())
        return {};
    return "Scanned " + joined(sources, ", ") +
           (isClear ? " -- your Mac is clear of known AI bots." : " -- nothing found there.");
}

std::string updateText(bool isChecking, const std::optional<UpdateAnswer>& answer) {
    if (isChecking)
        return "Asking the system's package service…";
    if (!answer)
        return {};
    switch (answer->kind) {
    case UpdateAnswer::Kind::upToDate:
        return "Quorva is up to date.";
    case UpdateAnswer::Kind::available:
        return fmt::format("Version {} is available. Install it with your system's updates.",
                           answer->version);
    case UpdateAnswer::Kind::unknown:
        break;
    }
    return fmt::format("It could not be found out whether there is a newer version: {}",
                       answer->reason);
}

} // namespace quorva
