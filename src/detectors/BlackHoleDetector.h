// Tells whether a virtual loopback sound device is installed, through which a recorder can listen
// to what the computer plays. Looks once. Main thread only.
#pragma once

#include "base/Published.h"
#include "platform/AudioDevices.h"

#include <cstdint>
#include <optional>

namespace quorva {

class BlackHoleDetector {
public:
    /// Begins to look; the fields change when the devices have been listed. The service must
    /// outlive the detector.
    explicit BlackHoleDetector(AudioDevices& audioDevices);

    /// A device whose name holds "blackhole", in any letter case, was found.
    Published<bool, BlackHoleDetector> isInstalled{false};
    /// The first one's.
    Published<std::optional<std::uint32_t>, BlackHoleDetector> blackHoleDeviceID;
    /// There is a microphone among the devices.
    Published<bool, BlackHoleDetector> hasMicrophone{false};

private:
    void search(const std::vector<AudioDevice>& devices);

    Subscription listing;
};

} // namespace quorva
