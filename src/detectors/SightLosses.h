// Decides when it is worth telling that a meeting has gone out of sight: once when it begins, and
// not again whenever its window or tab comes and goes. Belongs to one thread.
#pragma once

#include "base/Time.h"
#include "detectors/MeetingPass.h"

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace quorva {

class SightLosses {
public:
    /// Takes over what a pass at the time `now` found to be unseen. Returns those that are to be
    /// told now: they have been unseen for a few seconds, and were not told before, or have been in
    /// sight for five minutes since.
    [[nodiscard]] std::vector<UnseenMeeting> update(const std::vector<UnseenMeeting>& unseen,
                                                    Time now);

private:
    /// Where a meeting is hidden does not matter: it may move from one place to another.
    using Key =
        std::tuple<std::string, std::string_view, bool>; ///< and whether it is just too long
    struct Loss {
        Time since;
        Time last;
        bool isTold = false;
    };

    std::map<Key, Loss> losses;
};

} // namespace quorva
