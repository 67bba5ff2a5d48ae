// All sources of detections, in the order in which they are shown and reported. A new source is
// added here: its profile to the first list, itself to the class.
#pragma once

#include "sources/InvitationSource.h"
#include "sources/MeetingSource.h"
#include "sources/ProcessSource.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

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

    /// The states of the sources, in their order.
    [[nodiscard]] std::vector<SourceState> states() const {
        std::vector<SourceState> states;
        for (const auto* const source : all)
            states.push_back(*source->state);
        return states;
    }

    /// Describes a key of the allow list for people: the product's name, and where it is allowed.
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
