#include "core/ShareText.h"

#include <fmt/format.h>

namespace quorva {
namespace {

std::string recommendation(const std::string& bot, std::string_view place) {
    return fmt::format("Heads up \u2014 I just detected {} {} using Quorva, a tool that spots AI "
                       "recording bots in Zoom, Teams & Meet. Free to try: {}",
                       bot, place, productAddress);
}

} // namespace

std::string shareText(const Findings& findings) {
    const Finding* first = nullptr;
    for (const auto& finding : findings)
        if (!finding->kind().sharedPlace.empty() &&
            (!first || finding->kind().alertRank < first->kind().alertRank))
            first = finding.get();
    if (first)
        return recommendation(botName(*first), first->kind().sharedPlace);
    return fmt::format("I use Quorva to detect AI recording bots in my meetings. It spots Otter, "
                       "Fireflies, Gong & 180+ more. Free to try: {}",
                       productAddress);
}

} // namespace quorva
