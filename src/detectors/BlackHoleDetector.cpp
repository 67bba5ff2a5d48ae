#include "detectors/BlackHoleDetector.h"

#include "base/Text.h"

#include <algorithm>

namespace quorva {

BlackHoleDetector::BlackHoleDetector(AudioDevices& audioDevices) {
    listing = audioDevices.fetchDevices([this](const std::optional<std::vector<AudioDevice>>& all) {
        if (all)
            search(*all);
    });
}

void BlackHoleDetector::search(const std::vector<AudioDevice>& devices) {
    hasMicrophone = std::any_of(devices.begin(), devices.end(),
                                [](const AudioDevice& device) { return device.isMicrophone; });
    const auto found = std::find_if(devices.begin(), devices.end(), [](const AudioDevice& device) {
        return device.name && lowerCased(*device.name).find("blackhole") != std::string::npos;
    });
    if (found == devices.end())
        return;
    blackHoleDeviceID = found->id;
    isInstalled = true;
}

} // namespace quorva
