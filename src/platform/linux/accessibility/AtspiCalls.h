// Calls to one application on the accessibility bus: many in flight at once, and a watch that
// notices when the application does not answer any more.
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

/// One method call, whose parameters are texts, then numbers.
struct AtspiCall {
    const AtspiReference& object;
    const char* interface;
    const char* method;
    std::initializer_list<const char*> texts = {};
    std::initializer_list<std::int32_t> numbers = {};
};

class AtspiCalls {
public:
    /// Gets the parameters of the reply, null for any failure; these live as long as the call.
    using Reply = std::function<void(GVariant* reply)>;

    /// `connection` must outlive the object. `onHang` is called once when calls are in flight and
    /// none has been answered for a second and a half: all of them are given up then, without a
    /// reply, and so are those made later.
    AtspiCalls(AtspiConnection& connection, Task onHang);

    /// Gives up what is in flight, without replies.
    ~AtspiCalls();

    AtspiCalls(const AtspiCalls&) = delete;
    AtspiCalls& operator=(const AtspiCalls&) = delete;

    /// Sends what is for `owner` over its own connection from now on, which must outlive the object
    /// too.
    void use(AtspiConnection& peer, std::string owner);

    /// The reply comes later, never within this call.
    void send(const AtspiCall& call, Reply reply);

    /// As send, for the value of a property.
    void get(const AtspiReference& object, const char* interface, const char* property,
             Reply reply);

    /// How many more calls should be sent now.
    [[nodiscard]] int room() const;

private:
    struct State;
    struct Pending;
    static gboolean look(gpointer watched);
    static int receive(sd_bus_message* message, void* answered, sd_bus_error*);
    static void finish(Pending& pending, GVariant* body);

    std::shared_ptr<State> state;
};

} // namespace quorva
