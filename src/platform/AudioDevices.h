// The sound devices of this computer, listed only: nothing is recorded or played.
#pragma once

#include "base/Subscription.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

struct AudioDevice {
    std::uint32_t id = 0;            ///< the sound server's index
    std::optional<std::string> name; ///< for people, UTF-8; absent when it could not be read
    bool isMicrophone = false;       ///< a source that does not monitor a sink

    bool operator==(const AudioDevice&) const = default;
};

/// Main thread only; no operation waits for the sound server.
class AudioDevices {
public:
    virtual ~AudioDevices() = default;

    /// Lists the devices and calls `done` once, on the main loop or within this call: with the
    /// devices in the server's order, sinks first, or with nothing when listing failed. Dropping
    /// the subscription cancels the request; `done` is then not called.
    [[nodiscard]] virtual Subscription
    fetchDevices(std::function<void(std::optional<std::vector<AudioDevice>>)> done) = 0;
};

} // namespace quorva
