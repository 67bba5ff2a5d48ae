// The products that the user does not want to be told of.
#pragma once

#include "base/Published.h"
#include "catalogue/Records.h"
#include "platform/Preferences.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// What a detection is known under in the allow list.
[[nodiscard]] inline const std::string& allowKey(const DetectedBot& bot) {
    return bot.signatureId;
}
[[nodiscard]] inline const std::string& allowKey(const CalendarBotDetection& detection) {
    return detection.signatureId;
}
[[nodiscard]] inline const std::string& allowKey(const ParticipantBotDetection& detection) {
    return detection.botDisplayName;
}

/// Main thread only.
class AllowList {
public:
    /// Reads the list. The preferences must outlive it.
    explicit AllowList(Preferences& preferences);

    Published<std::set<std::string>> allowedBotIds;

    [[nodiscard]] bool allows(const std::string& key) const;

    /// Adds or removes a key, and stores the list.
    void allow(const std::string& key);
    void remove(const std::string& key);

    /// The detections that are not allowed, in their order.
    template <typename Detection>
    [[nodiscard]] std::vector<Detection> without(const std::vector<Detection>& found) const {
        std::vector<Detection> rest;
        for (const auto& detection : found)
            if (!allows(allowKey(detection)))
                rest.push_back(detection);
        return rest;
    }

    /// What a key stands for, for people: the product's name and where it is not told of.
    [[nodiscard]] static std::string describe(const std::string& key);

private:
    void store(std::set<std::string> next);

    Preferences& preferences;
};

} // namespace quorva
