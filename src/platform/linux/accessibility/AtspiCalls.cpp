#include "platform/linux/accessibility/AtspiCalls.h"

#include "platform/linux/glib/MainContext.h"

#include <algorithm>
#include <list>
#include <utility>

namespace quorva {
namespace {

constexpr int maxInFlight = 48;
constexpr guint checkInterval = 250; // milliseconds
/// Checks, not milliseconds: the time in which this thread was busy does not count.
constexpr int checksUntilHang = 6;

using MessagePtr = std::unique_ptr<sd_bus_message, Release<sd_bus_message_unref>>;
using SlotPtr = std::unique_ptr<sd_bus_slot, Release<sd_bus_slot_unref>>;

MessagePtr messageOf(const AtspiConnection& connection, const AtspiCall& call) {
    const bool isPeer = connection.kind() == AtspiConnection::Kind::peer;
    sd_bus_message* made = nullptr;
    if (sd_bus_message_new_method_call(connection.bus(), &made,
                                       isPeer ? nullptr : call.object.bus.c_str(),
                                       call.object.path.c_str(), call.interface, call.method) < 0)
        return nullptr;
    MessagePtr message(made);
    sd_bus_message_set_auto_start(made, 0);
    for (const char* const text : call.texts)
        sd_bus_message_append_basic(made, SD_BUS_TYPE_STRING, text);
    for (const std::int32_t number : call.numbers)
        sd_bus_message_append_basic(made, SD_BUS_TYPE_INT32, &number);
    for (const std::uint32_t number : call.naturals)
        sd_bus_message_append_basic(made, SD_BUS_TYPE_UINT32, &number);
    return message;
}

} // namespace

struct AtspiCalls::Pending {
    std::weak_ptr<State> state;
    Reply reply;
    SlotPtr slot;   ///< dropping it cancels the call
    GSourcePtr end; ///< fails a call that could not be sent
};

struct AtspiCalls::State {
    State(AtspiConnection& connection_, Task onHang_)
        : connection(connection_), onHang(std::move(onHang_)) {}

    AtspiConnection& connection;
    Task onHang;
    GMainContextPtr context{g_main_context_ref_thread_default()};
    GSourcePtr watch;
    std::list<Pending> inFlight;
    int checks = 0; ///< since the last answer
    bool isOver = false;
    AtspiConnection* peer = nullptr;
    std::string owner; ///< of the peer: its name on the bus

    [[nodiscard]] AtspiConnection& connectionFor(const AtspiCall& call) const {
        return peer != nullptr && call.object.bus == owner ? *peer : connection;
    }

    void end() {
        isOver = true;
        inFlight.clear();
        watch.reset();
    }
};

AtspiCalls::AtspiCalls(AtspiConnection& connection, Task onHang)
    : state(std::make_shared<State>(connection, std::move(onHang))) {}

AtspiCalls::~AtspiCalls() {
    state->end();
}

void AtspiCalls::send(const AtspiCall& call, Reply reply) {
    if (state->isOver)
        return;
    if (state->inFlight.empty()) {
        state->checks = 0;
        state->watch.reset(g_timeout_source_new(checkInterval));
        g_source_set_callback(state->watch.get(), check, state.get(), nullptr);
        g_source_attach(state->watch.get(), state->context.get());
    }
    auto& pending =
        state->inFlight.emplace_back(Pending{state, std::move(reply), nullptr, nullptr});
    const auto& connection = state->connectionFor(call);
    auto* const bus = connection.bus();
    const auto message = bus != nullptr ? messageOf(connection, call) : nullptr;
    sd_bus_slot* slot = nullptr;
    if (message && sd_bus_call_async(bus, &slot, message.get(), receive, &pending, UINT64_MAX) >= 0)
        pending.slot.reset(slot);
    else if (bus != nullptr && sd_bus_is_open(bus) > 0)
        pending.end = contextTimer(0, [&pending] { finish(pending, nullptr); });
    // Otherwise the connection is lost, which its owner is told.
}

void AtspiCalls::use(AtspiConnection& peer, std::string owner) {
    state->peer = &peer;
    state->owner = std::move(owner);
}

void AtspiCalls::get(const AtspiReference& object, const char* interface, const char* property,
                     Reply reply) {
    send({object, atspi::properties, "Get", {interface, property}}, std::move(reply));
}

int AtspiCalls::room() const {
    return state->isOver ? 0 : maxInFlight - static_cast<int>(state->inFlight.size());
}

int AtspiCalls::receive(sd_bus_message* message, void* answered, sd_bus_error*) {
    if (sd_bus_is_open(sd_bus_message_get_bus(message)) <= 0)
        return 0; // not an answer: a lost connection ends its calls like this
    const auto body =
        sd_bus_message_is_method_error(message, nullptr) > 0 ? nullptr : bodyOf(message);
    finish(*static_cast<Pending*>(answered), body.get());
    return 0;
}

void AtspiCalls::finish(Pending& pending, GVariant* body) {
    const auto state = pending.state.lock();
    if (!state)
        return;
    const auto found = std::find_if(state->inFlight.begin(), state->inFlight.end(),
                                    [&](const Pending& each) { return &each == &pending; });
    std::list<Pending> done; // keeps the callback alive while it runs
    done.splice(done.end(), state->inFlight, found);
    state->checks = 0;
    if (state->inFlight.empty())
        state->watch.reset();
    done.front().reply(body);
}

gboolean AtspiCalls::check(gpointer watched) {
    auto& state = *static_cast<State*>(watched);
    if (++state.checks < checksUntilHang)
        return G_SOURCE_CONTINUE;
    const auto onHang = state.onHang; // may destroy the owner, and with it the state
    state.isOver = true;
    state.inFlight.clear();
    onHang();
    return G_SOURCE_REMOVE;
}

} // namespace quorva
