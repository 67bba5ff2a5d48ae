// Lists sound devices over the PulseAudio protocol, which PipeWire serves too.
#pragma once

#include "base/MainLoop.h"
#include "platform/AudioDevices.h"

#include <atomic>
#include <memory>

namespace quorva {

/// Each fetch opens a connection on a worker thread and closes it before it answers, so that none
/// stays open in between. A sound server is never started. Main thread only; the subscriptions may
/// outlive this object. An id is the server's index, which sinks and sources count separately; a
/// name is the device's description.
class PulseAudioDevices final : public AudioDevices {
public:
    /// A fetch fails after `timeout`. `loop` must outlive this object and its subscriptions.
    explicit PulseAudioDevices(MainLoop& loop, Seconds timeout = Seconds(5));

    [[nodiscard]] Subscription
    fetchDevices(std::function<void(std::optional<std::vector<AudioDevice>>)> done) override;

private:
    MainLoop& loop;
    const Seconds timeout;
    std::shared_ptr<std::atomic<int>> workers = std::make_shared<std::atomic<int>>(0);
};

} // namespace quorva
