#include "platform/linux/AtspiCalls.h"

#include "platform/linux/BusCall.h"

#include <utility>

namespace quorva {
namespace {

constexpr int maxInFlight = 48;        // more does not make it faster
constexpr gint64 patience = 1'500'000; // microseconds
constexpr guint lookInterval = 250;    // milliseconds

} // namespace

struct AtspiCalls::State {
    GObjectPtr<GDBusConnection> bus;
    std::function<void()> onHang;
    GObjectPtr<GCancellable> cancellable{g_cancellable_new()};
    GMainContextPtr context{g_main_context_ref_thread_default()};
    GSourcePtr watch;
    int inFlight = 0;
    gint64 lastAnswer = 0;
    bool isOver = false;

    void end() {
        isOver = true;
        watch.reset();
        g_cancellable_cancel(cancellable.get());
    }
};

AtspiCalls::AtspiCalls(GDBusConnection* bus, std::function<void()> onHang)
    : state(std::make_shared<State>()) {
    state->bus.reset(G_DBUS_CONNECTION(g_object_ref(bus)));
    state->onHang = std::move(onHang);
}

AtspiCalls::~AtspiCalls() {
    state->end();
}

void AtspiCalls::send(const AtspiCall& call, Reply reply) {
    if (state->isOver) {
        const GVariantPtr unused(call.parameters != nullptr ? g_variant_ref_sink(call.parameters)
                                                            : nullptr);
        return;
    }
    if (state->inFlight++ == 0) {
        state->lastAnswer = g_get_monotonic_time();
        state->watch.reset(g_timeout_source_new(lookInterval));
        g_source_set_callback(state->watch.get(), look, state.get(), nullptr);
        g_source_attach(state->watch.get(), state->context.get());
    }
    callBus(state->bus.get(),
            {call.object.bus.c_str(), call.object.path.c_str(), call.interface, call.method,
             call.parameters, G_MAXINT, G_DBUS_CALL_FLAGS_NO_AUTO_START, state->cancellable.get()},
            [held = state, reply = std::move(reply)](GVariant* value) {
                if (held->isOver)
                    return;
                held->lastAnswer = g_get_monotonic_time();
                if (--held->inFlight == 0)
                    held->watch.reset();
                reply(value);
            });
}

void AtspiCalls::get(const AtspiReference& object, const char* interface, const char* property,
                     Reply reply) {
    send({object, atspi::properties, "Get", g_variant_new("(ss)", interface, property)},
         std::move(reply));
}

int AtspiCalls::room() const {
    return state->isOver ? 0 : maxInFlight - state->inFlight;
}

gboolean AtspiCalls::look(gpointer watched) {
    const auto& state = *static_cast<State*>(watched);
    if (g_get_monotonic_time() - state.lastAnswer < patience)
        return G_SOURCE_CONTINUE;
    const auto onHang = state.onHang; // may end the owner, and with it the state
    static_cast<State*>(watched)->isOver = true;
    g_cancellable_cancel(state.cancellable.get());
    onHang();
    return G_SOURCE_REMOVE;
}

} // namespace quorva
