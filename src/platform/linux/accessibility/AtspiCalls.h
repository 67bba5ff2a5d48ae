// Calls to one application on the accessibility bus: many in flight at once, and a watchdog that
// notices when the application stops answering.
// Belongs to the thread, and to the thread-default main context, that made it.
#pragma once

#include "platform/linux/accessibility/AtspiConnection.h"
#include "platform/linux/accessibility/AtspiProtocol.h"
#include "platform/linux/glib/Handles.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>

namespace quorva {

/// One method call. Its parameters are texts, followed by numbers, followed by unsigned numbers.
struct AtspiCall {
    const AtspiReference& object;
    const char* interface;
    const char* method;
    std::initializer_list<const char*> texts = {};
    std::initializer_list<std::int32_t> numbers = {};
    std::initializer_list<std::uint32_t> naturals = {};
};

class AtspiCalls {
public:
    /// Receives the parameters of the reply, valid during the call; null for any failure.
    using Reply = std::function<void(GVariant* reply)>;

    /// `connection` must outlive the object. `onHang` is called once, when calls are in flight and
    /// none has been answered for a second and a half: they, and all later calls, are dropped
    /// without a reply. It may destroy the object.
    AtspiCalls(AtspiConnection& connection, Task onHang);

    /// Drops what is in flight, without replies.
    ~AtspiCalls();

    AtspiCalls(const AtspiCalls&) = delete;
    AtspiCalls& operator=(const AtspiCalls&) = delete;

    /// From now on, sends calls to `owner` over its own connection, which must outlive the object.
    void use(AtspiConnection& peer, std::string owner);

    /// Calls `reply` once, never within this call; not at all when the connection is lost.
    void send(const AtspiCall& call, Reply reply);

    /// The same, for the value of a property.
    void get(const AtspiReference& object, const char* interface, const char* property,
             Reply reply);

    /// The number of calls that may be sent now; more would not make it faster.
    [[nodiscard]] int room() const;

private:
    struct State;
    struct Pending;
    static gboolean check(gpointer watched);
    static int receive(sd_bus_message* message, void* answered, sd_bus_error*);
    static void finish(Pending& pending, GVariant* body);

    std::shared_ptr<State> state;
};

} // namespace quorva
