#include "core/Verdict.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva {

Verdict verdictOf(bool isMonitoring, std::size_t findings, const std::vector<SourceState>& states) {
    if (!isMonitoring)
        return Verdict::off;
    if (findings > 0)
        return Verdict::found;
    if (std::ranges::any_of(states, &SourceState::isLimited))
        return Verdict::notFullyWatching;
    const bool isLooking = std::ranges::any_of(
        states, [](const SourceState& state) { return state.kind == SourceState::Kind::looking; });
    return isLooking ? Verdict::scanning : Verdict::clear;
}

std::string verdictText(Verdict verdict, std::size_t findings) {
    switch (verdict) {
    case Verdict::off:
        return "Monitoring Off";
    case Verdict::scanning:
        return "Scanning";
    case Verdict::notFullyWatching:
        return "Not fully watching";
    case Verdict::clear:
        return "All Clear";
    case Verdict::found:
        break;
    }
    return fmt::format("{} Bot{} Detected", findings, findings == 1 ? "" : "s");
}

std::string verdictLabel(Verdict verdict, std::size_t findings) {
    switch (verdict) {
    case Verdict::clear:
        return "All clear";
    case Verdict::found:
        return fmt::format("{} bots detected", findings);
    default:
        return verdictText(verdict, findings);
    }
}

std::string_view verdictExplanation(Verdict verdict) {
    switch (verdict) {
    case Verdict::off:
        return "Nothing is being looked at";
    case Verdict::scanning:
        return "Nothing found so far, still looking";
    case Verdict::notFullyWatching:
        return "No AI recording bots detected in what can be looked at";
    case Verdict::clear:
        return "No AI recording bots detected across all sources";
    case Verdict::found:
        break;
    }
    return {};
}

std::string stateInWords(Verdict verdict, std::size_t findings, const Sources& sources) {
    std::string unseen;
    for (const auto* const source : sources)
        if (source->state->isLimited())
            unseen += fmt::format("{}{}", unseen.empty() ? "" : ", ", source->profile.place);
    auto text = verdictText(verdict, findings);
    if (unseen.empty() || verdict == Verdict::off)
        return text;
    return text + (verdict == Verdict::found ? ", but not seen: " : ": ") + unseen;
}

std::string uncoveredText(const Sources& sources) {
    std::string lines;
    for (const auto* const source : sources)
        if (source->state->isLimited())
            lines += (lines.empty() ? "" : "\n") + source->state->reason;
    return lines;
}

} // namespace quorva
