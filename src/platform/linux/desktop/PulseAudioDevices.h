// The sound devices that the PulseAudio protocol lists; PipeWire serves it too.
#pragma once

#include "base/MainLoop.h"
#include "platform/AudioDevices.h"

#include <atomic>
#include <memory>

namespace quorva {

/// Each fetch has a connection of its own, made and waited for on a worker thread and closed before
/// it answers, so that nothing is left open between them. A sound server is never started. Main
/// thread only; the subscriptions may outlive this object. Ids are the server's indexes, which
/// sinks and sources count apart; names are descriptions.
class PulseAudioDevices final : public AudioDevices {
public:
    /// A server that takes longer than `limit` has no devices that could be listed. `loop` must
    /// outlive this object and its subscriptions.
    explicit PulseAudioDevices(MainLoop& loop, Seconds limit = Seconds(5));

    [[nodiscard]] Subscription
    fetchDevices(std::function<void(std::optional<std::vector<AudioDevice>>)> done) override;

private:
    MainLoop& loop;
    const Seconds limit;
    std::shared_ptr<std::atomic<int>> workers = std::make_shared<std::atomic<int>>(0);
};

} // namespace quorva
