// Calls to one application on the accessibility bus: many in flight at once, and a watch that
// notices when the application does not answer any more.
// Belongs to the thread, and to the thread-default main context, that made it.
#pragma once

#include "platform/linux/AtspiProtocol.h"
#include "platform/linux/Handles.h"

#include <functional>
#include <memory>
#include <string>

namespace quorva {

/// One method call. `parameters` may be floating, or null for none.
struct AtspiCall {
    const AtspiReference& object;
    const char* interface;
    const char* method;
    GVariant* parameters = nullptr;
};

class AtspiCalls {
public:
    /// Gets the parameters of the reply, null for any failure; these live as long as the call.
    using Reply = std::function<void(GVariant* reply)>;

    /// `onHang` is called once when calls are in flight and none has been answered for `patience`:
    /// all of them are given up then, without a reply, and so are those made later.
    AtspiCalls(GDBusConnection* bus, std::function<void()> onHang);

    /// Gives up what is in flight, without replies.
    ~AtspiCalls();

    AtspiCalls(const AtspiCalls&) = delete;
    AtspiCalls& operator=(const AtspiCalls&) = delete;

    void send(const AtspiCall& call, Reply reply);

    /// As send, for the value of a property.
    void get(const AtspiReference& object, const char* interface, const char* property,
             Reply reply);

    /// How many more calls should be sent now.
    [[nodiscard]] int room() const;

private:
    struct State;
    static gboolean look(gpointer state);

    std::shared_ptr<State> state;
};

} // namespace quorva
