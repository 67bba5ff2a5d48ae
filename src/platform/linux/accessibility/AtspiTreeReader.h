// Reads the tree of one window from the accessibility bus, and keeps it: a later reading asks only
// for what has been reported as changed. Elements are asked for in the order in which a walk would
// meet them, so that a tree beyond its budget is read as far as the walk comes.
// Belongs to the thread that made it.
#pragma once

#include "base/Lifetime.h"
#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiCalls.h"
#include "platform/linux/accessibility/AtspiNode.h"
#include "platform/linux/accessibility/AtspiProtocol.h"

#include <functional>
#include <memory>
#include <queue>
#include <string>
#include <unordered_map>
#include <vector>

namespace quorva {

/// What all windows of an application have in common.
struct AtspiApplicationTraits {
    AtspiToolkit toolkit = AtspiToolkit::unknown;
    /// The roles in the user's language, by number: asked for once each.
    std::unordered_map<std::uint32_t, std::string> roleNames;
};

class AtspiTreeReader {
public:
    /// Both references must outlive the reader.
    AtspiTreeReader(AtspiCalls& calls, AtspiApplicationTraits& traits, AtspiReference root);
    ~AtspiTreeReader();

    AtspiTreeReader(const AtspiTreeReader&) = delete;
    AtspiTreeReader& operator=(const AtspiTreeReader&) = delete;

    enum class Texts { none, all };

    /// Reads what is not known yet of the tree to this extent; `done` is called when that is over,
    /// possibly within this call. One reading at a time. It goes on as long as `resume` is called
    /// after replies have made room.
    void read(const TreeExtent& extent, Texts texts, std::function<void()> done);
    void resume();

    /// Everything has to be read again; what turns out to be the same stays the same object.
    void forget();

    /// The documents that are shown, and the way to them, have to be read again.
    void forgetWayToDocuments();

    /// Whether any document is shown has to be read again.
    void forgetDocuments();

    /// Takes note of a signal. Whether it makes a part of this tree to be read again.
    bool note(const AtspiEvent& event);

    /// The tree to the extent of the last completed reading; null when there is none.
    [[nodiscard]] AccessibleElementPtr tree();

    [[nodiscard]] const AtspiReference& root() const;

    /// The root's children with their titles.
    [[nodiscard]] std::vector<std::pair<AtspiReference, std::string>> listChildren() const;

    /// Whether the last completed reading met a document that says it is shown.
    [[nodiscard]] bool showsDocument() const;

    /// Whether the window has a document, shown or counted as such, that is not empty.
    [[nodiscard]] bool hasDocument() const;

private:
    using Node = AtspiNode;
    struct Later;
    using NodePtr = std::shared_ptr<Node>;
    using Answer = void (AtspiTreeReader::*)(Node&, GVariant*);

    [[nodiscard]] static NodePtr makeNode(AtspiReference reference, Node* parent,
                                          std::uint32_t index);
    void enter(Node& node);
    void leave(Node& node);
    void enqueue(const NodePtr& node);
    void visit(const NodePtr& node, int& budget);
    [[nodiscard]] bool isPrefixRead(const Node& node, int& budget) const;
    [[nodiscard]] bool isEnough();
    [[nodiscard]] bool maySend() const;
    void clearQueue();
    void finish();
    void settleDocuments();

    void advance(const NodePtr& node);
    void ask(const NodePtr& node, const char* interface, const char* method, Answer answer,
             std::initializer_list<const char*> textParameters = {},
             std::initializer_list<std::int32_t> numberParameters = {});
    void askProperty(const NodePtr& node, const char* name, Answer answer);
    void askDetails(const NodePtr& node);
    void askDocument(const NodePtr& node);
    void askRoleName(const Node& node);
    void askChildren(const NodePtr& node);
    void settle(const NodePtr& node);
    void takeRole(Node& node, GVariant* reply);
    void takeDetails(Node& node, GVariant* reply);
    void takeName(Node& node, GVariant* reply);
    void takeDescription(Node& node, GVariant* reply);
    void takeCount(Node& node, GVariant* reply);
    void takeState(Node& node, GVariant* reply);
    void takeAddress(Node& node, GVariant* reply);
    void takeText(Node& node, GVariant* reply);
    void takeChildren(Node& node, GVariant* reply);
    void takeChild(Node& node, GVariant* reply);
    void adopt(Node& node, std::vector<AtspiReference> references);
    bool noteAt(Node& node, AtspiChange change);
    [[nodiscard]] static bool isWithinDocument(const Node& node);

    [[nodiscard]] bool descends(const Node& node) const;
    [[nodiscard]] bool isPart(const Node& node) const;
    [[nodiscard]] bool isKnown(const Node& node) const;
    [[nodiscard]] bool wantsState(const Node& node) const;
    [[nodiscard]] bool wantsText(const Node& node) const;
    [[nodiscard]] bool wantsChildren(const Node& node) const;
    AccessibleElementPtr publish(Node& node);

    AtspiCalls& calls;
    AtspiApplicationTraits& traits;
    TreeExtent extent;
    Texts texts = Texts::none;
    std::function<void()> done;
    std::unordered_multimap<std::string, Node*> nodesOfPath;
    std::priority_queue<Later> queue; ///< what has to be asked for, in the order of the walk
    NodePtr top;
    int asked = 0;                     ///< calls in flight
    int readSinceLook = 0;             ///< elements, until the next look at the budget
    bool isOver = false;               ///< the budget of this reading is used up
    bool isComplete = false;           ///< a reading has been completed
    AccessibleElementPtr everything;   ///< that was read, and
    AccessibleElementPtr withinBudget; ///< the part of that which was asked for
    Lifetime lifetime;
};

} // namespace quorva
