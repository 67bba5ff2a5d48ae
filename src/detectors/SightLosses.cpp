#include "detectors/SightLosses.h"

namespace quorva {
namespace {

constexpr Seconds timeToTell{4};     ///< shorter than the time between two passes
constexpr Seconds timeToForget{300}; ///< in sight

} // namespace

std::vector<UnseenMeeting> SightLosses::update(const std::vector<UnseenMeeting>& unseen, Time now) {
    std::erase_if(losses, [&](const auto& each) {
        const auto& loss = each.second;
        return now - loss.last >= timeToForget;
    });
    std::vector<UnseenMeeting> told;
    for (const auto& meeting : unseen) {
        const Key key{meeting.applicationName, meeting.platformName,
                      meeting.cause == UnseenMeeting::Cause::beyondBudget};
        auto& loss = losses.try_emplace(key, Loss{now, now}).first->second;
        loss.last = now;
        if (loss.isTold || now - loss.since < timeToTell)
            continue;
        loss.isTold = true;
        told.push_back(meeting);
    }
    std::erase_if(losses, [&](const auto& each) { // it was just being opened
        return !each.second.isTold && each.second.last != now;
    });
    return told;
}

} // namespace quorva
