#include "platform/linux/desktop/PulseAudioDevices.h"

#include "platform/linux/glib/BlockingWork.h"
#include "platform/linux/glib/Utf8.h"

#include <chrono>
#include <pulse/pulseaudio.h>
#include <utility>

namespace quorva {
namespace {

using Devices = std::vector<AudioDevice>;
using Clock = std::chrono::steady_clock;
using PulseLoopPtr = std::unique_ptr<pa_mainloop, Release<pa_mainloop_free>>;
using OperationPtr = std::unique_ptr<pa_operation, Release<pa_operation_unref>>;

struct EndContext {
    void operator()(pa_context* context) const {
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
};
using ContextPtr = std::unique_ptr<pa_context, EndContext>;

constexpr int maxWorkers = 4; ///< as many as this at once means that they hang

/// One conversation with the server, on a worker thread.
class Listing {
public:
    Listing(GCancellable* cancellable_, Seconds timeout)
        : cancellable(cancellable_),
          deadline(Clock::now() + std::chrono::duration_cast<Clock::duration>(timeout)) {}

    std::optional<Devices> run() {
        if (!connect() || !finish(pa_context_get_sink_info_list(context.get(), addSink, this)) ||
            !finish(pa_context_get_source_info_list(context.get(), addSource, this)))
            return std::nullopt;
        return std::move(devices);
    }

private:
    bool connect() {
        if (pa_context_connect(context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
            return false;
        while (pa_context_get_state(context.get()) != PA_CONTEXT_READY)
            if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context.get())) || !turn())
                return false;
        return true;
    }

    bool finish(pa_operation* started) {
        const OperationPtr operation(started);
        while (operation && pa_operation_get_state(operation.get()) == PA_OPERATION_RUNNING)
            if (!turn())
                return false;
        return operation && !hasFailed &&
               pa_operation_get_state(operation.get()) == PA_OPERATION_DONE;
    }

    /// Runs the loop once, for up to 100 ms. False after a failure, or when there is no time left.
    bool turn() {
        constexpr int microseconds = 100'000;
        if (Clock::now() > deadline || g_cancellable_is_cancelled(cancellable) != FALSE)
            return false;
        return pa_mainloop_prepare(loop.get(), microseconds) >= 0 &&
               pa_mainloop_poll(loop.get()) >= 0 && pa_mainloop_dispatch(loop.get()) >= 0;
    }

    static void addSink(pa_context*, const pa_sink_info* sink, int end, void* self) {
        static_cast<Listing*>(self)->add(sink, end, false);
    }
    static void addSource(pa_context*, const pa_source_info* source, int end, void* self) {
        const bool isMonitor = source != nullptr && source->monitor_of_sink != PA_INVALID_INDEX;
        static_cast<Listing*>(self)->add(source, end, !isMonitor);
    }

    template <typename Info>
    void add(const Info* info, int end, bool isMicrophone) {
        hasFailed |= end < 0;
        if (end != 0 || info == nullptr)
            return;
        auto& device =
            devices.emplace_back(AudioDevice{.id = info->index, .isMicrophone = isMicrophone});
        if (info->description != nullptr)
            device.name = validUtf8(info->description);
    }

    GCancellable* const cancellable;
    const Clock::time_point deadline;
    const PulseLoopPtr loop{pa_mainloop_new()};
    const ContextPtr context{pa_context_new(pa_mainloop_get_api(loop.get()), "Quorva")};
    Devices devices;
    bool hasFailed = false;
};

} // namespace

PulseAudioDevices::PulseAudioDevices(MainLoop& loop_, Seconds timeout_)
    : loop(loop_), timeout(timeout_) {}

Subscription PulseAudioDevices::fetchDevices(std::function<void(std::optional<Devices>)> done) {
    if (*workers >= maxWorkers) {
        done(std::nullopt);
        return Subscription();
    }
    using Cancellable = std::shared_ptr<GCancellable>;
    const Cancellable cancellable(g_cancellable_new(), g_object_unref);
    const auto waiting =
        std::make_shared<std::function<void(std::optional<Devices>)>>(std::move(done));
    const auto deadline = std::make_shared<Timer>(
        loop.after(timeout, [cancellable] { g_cancellable_cancel(cancellable.get()); }));
    ++*workers;
    runBlocking<std::optional<Devices>>(
        cancellable.get(),
        [timeout = timeout, workers = workers](GCancellable* cancellation) {
            auto devices = Listing(cancellation, timeout).run();
            --*workers;
            return devices;
        },
        [waiting, deadline](std::optional<std::optional<Devices>> devices) {
            deadline->reset();
            if (const auto callback = std::exchange(*waiting, nullptr))
                callback(std::move(devices).value_or(std::nullopt));
        });
    return Subscription([waiting, deadline, cancellable] {
        *waiting = nullptr;
        deadline->reset();
        g_cancellable_cancel(cancellable.get());
    });
}

} // namespace quorva
