// Every source of detections, in the order in which they are shown and reported. This is the place
// where a program's sources are put together: a new one takes a line in each of the two lists.
#pragma once

#include "sources/InvitationSource.h"
#include "sources/MeetingSource.h"
#include "sources/ProcessSource.h"

#include <array>
#include <string>
#include <string_view>

namespace quorva {

inline const std::array sourceProfiles{&processProfile, &invitationProfile, &meetingProfile};

/// Main thread only.
class Sources {
public:
    /// The services must outlive the sources. None of them is on.
    Sources(Platform& platform, Preferences& preferences)
        : process(platform), calendar(platform, preferences), meeting(platform) {}

    ProcessSource process;
    InvitationSource calendar;
    MeetingSource meeting;

    [[nodiscard]] auto begin() const { return all.begin(); }
    [[nodiscard]] auto end() const { return all.end(); }

    /// What a key of the allow list stands for, for people: the product's name and where it is not
    /// told of.
    [[nodiscard]] std::string describe(const std::string& allowKey) const {
        for (const auto* const source : all)
            if (const auto name = source->productNamed(allowKey); !name.empty())
                return name + ", " + std::string(source->profile.allowedAt);
        return allowKey;
    }

private:
    const std::array<Source*, sourceProfiles.size()> all{&process, &calendar, &meeting};
};

} // namespace quorva
