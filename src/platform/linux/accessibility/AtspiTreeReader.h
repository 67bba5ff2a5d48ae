// Fetches what is not known of a tree from the accessibility bus. Elements are asked about in the
// order in which a walk would meet them (TreeWalk.h), so that a tree beyond its budget is read as
// far as the walk comes. Belongs to the thread that made it.
#pragma once

#include "base/Lifetime.h"
#include "base/Subscription.h"
#include "platform/linux/accessibility/AtspiCalls.h"
#include "platform/linux/accessibility/AtspiTree.h"

#include <cstdint>
#include <initializer_list>
#include <queue>

namespace quorva {

class AtspiTreeReader {
public:
    /// All must outlive the reader, which adds the names of roles to `traits`.
    AtspiTreeReader(AtspiCalls& calls, AtspiApplicationTraits& traits, AtspiTree& tree);
    ~AtspiTreeReader();

    AtspiTreeReader(const AtspiTreeReader&) = delete;
    AtspiTreeReader& operator=(const AtspiTreeReader&) = delete;

    /// Reads what is not known of the tree within its scope, which stays the same meanwhile. Calls
    /// `done` once when that is over, possibly within this call. One reading at a time, also of all
    /// readers that share `calls`. An element that fails to answer counts as empty.
    void read(Task done);

private:
    using Node = AtspiNode;
    using NodePtr = AtspiTree::NodePtr;
    using Handler = void (AtspiTreeReader::*)(Node&, GVariant*);
    struct Queued;
    enum class State {
        idle,
        reading,
        draining, ///< the budget is used up: the calls in flight are awaited, and none is added
    };

    void resume();
    void visit(const NodePtr& node);
    void enqueue(const NodePtr& node);
    void clearQueue();
    [[nodiscard]] bool isBudgetUsedUp();
    [[nodiscard]] bool maySend() const;
    void finish();

    void advance(const NodePtr& node);
    void settle(const NodePtr& node);
    void ask(const NodePtr& node, const char* interface, const char* method, Handler handler,
             std::initializer_list<const char*> texts = {},
             std::initializer_list<std::int32_t> numbers = {});
    void askProperty(const NodePtr& node, const char* name, Handler handler);
    void askDetails(const NodePtr& node);
    void askDocument(const NodePtr& node);
    void askRoleName(const Node& node);
    void askChildren(const NodePtr& node);
    void handleRole(Node& node, GVariant* reply);
    void handleDetails(Node& node, GVariant* reply);
    void handleName(Node& node, GVariant* reply);
    void handleDescription(Node& node, GVariant* reply);
    void handleCount(Node& node, GVariant* reply);
    void forgetChildrenOfNone(Node& node);
    void handleState(Node& node, GVariant* reply);
    void handleAddress(Node& node, GVariant* reply);
    void handleText(Node& node, GVariant* reply);
    void handleChildren(Node& node, GVariant* reply);
    void handleChild(Node& node, GVariant* reply);
    void adoptChildren(Node& node, std::vector<AtspiReference> references);

    AtspiCalls& calls;
    AtspiApplicationTraits& traits;
    AtspiTree& tree;
    State state = State::idle;
    Task done;
    std::priority_queue<Queued> queue; ///< elements to be asked about, in the order of the walk
    int inFlight = 0;                  ///< calls
    int readSinceCheck = 0;            ///< elements read since the budget was checked
    Lifetime lifetime;
};

} // namespace quorva
