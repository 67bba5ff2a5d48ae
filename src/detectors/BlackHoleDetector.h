// Detects whether a virtual loopback sound device is installed. A recorder can use one to listen to
// what the computer plays. Looks once, at construction. Main thread only.
#pragma once

#include "base/Published.h"
#include "platform/AudioDevices.h"

#include <cstdint>
#include <optional>

namespace quorva {

class BlackHoleDetector {
public:
    /// Starts to list the devices; the fields change when they are listed. The service must outlive
    /// the detector.
    explicit BlackHoleDetector(AudioDevices& audioDevices);

    /// A device whose name holds "blackhole", in any letter case, was found.
    Published<bool, BlackHoleDetector> isInstalled{false};
    /// The identifier of the first such device.
    Published<std::optional<std::uint32_t>, BlackHoleDetector> blackHoleDeviceID;
    /// There is a microphone among the devices.
    Published<bool, BlackHoleDetector> hasMicrophone{false};

private:
    void search(const std::vector<AudioDevice>& devices);

    Subscription listing;
};

} // namespace quorva
