#include "platform/linux/accessibility/AtspiTreeReader.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

namespace quorva {

struct AtspiTreeReader::Queued {
    int lap;
    std::vector<std::uint32_t> position;
    std::weak_ptr<Node> node;

    bool operator<(const Queued& other) const {
        return std::tie(other.lap, other.position) < std::tie(lap, position);
    }
};

AtspiTreeReader::AtspiTreeReader(AtspiCalls& calls_, AtspiApplicationTraits& traits_,
                                 AtspiTree& tree_)
    : calls(calls_), traits(traits_), tree(tree_) {}

AtspiTreeReader::~AtspiTreeReader() = default;

void AtspiTreeReader::read(Task done_) {
    done = std::move(done_);
    state = State::reading;
    tree.forEachUnknown([this](const NodePtr& node) { enqueue(node); });
    resume();
}

/// Queues what is not known of an element and below it.
void AtspiTreeReader::visit(const NodePtr& node) {
    const bool isInScope = tree.isInScope(*node);
    if (!node->hasRole || (isInScope && !tree.isKnown(*node)))
        enqueue(node);
    if (isInScope)
        for (const auto& child : node->children)
            visit(child);
}

void AtspiTreeReader::enqueue(const NodePtr& node) {
    if (state == State::draining || node->fetch.isQueued || node->fetch.inFlight > 0)
        return;
    node->fetch.isQueued = true;
    queue.push({AtspiTree::lapOf(*node), node->position, node});
}

void AtspiTreeReader::resume() {
    if (state == State::idle)
        return;
    if (isBudgetUsedUp()) {
        state = State::draining;
        clearQueue();
    }
    while (!queue.empty() && maySend()) {
        const auto node = queue.top().node.lock();
        queue.pop();
        if (!node || node->isDropped)
            continue;
        node->fetch.isQueued = false;
        advance(node);
    }
    if (queue.empty() && inFlight == 0)
        finish();
}

/// Calls that are sent while others are in flight concern elements further on in the walk. A tree
/// that is wide at every depth would grow there without end, so one that has outgrown its budget by
/// far is read with one call at a time.
bool AtspiTreeReader::maySend() const {
    constexpr std::size_t manyTimes = 8;
    const bool hasOutgrown =
        tree.size() > manyTimes * static_cast<std::size_t>(tree.extent().maxElements);
    return calls.room() > 0 && (inFlight == 0 || !hasOutgrown);
}

void AtspiTreeReader::clearQueue() {
    for (; !queue.empty(); queue.pop())
        if (const auto node = queue.top().node.lock())
            node->fetch.isQueued = false;
}

void AtspiTreeReader::finish() {
    state = State::idle;
    tree.settleDocuments();
    const auto call = std::exchange(done, nullptr); // may end the reader
    call();
}

/// Checked from time to time, because it costs a walk.
bool AtspiTreeReader::isBudgetUsedUp() {
    constexpr int interval = 256;
    if (readSinceCheck < interval || static_cast<int>(tree.size()) < tree.extent().maxElements)
        return false;
    readSinceCheck = 0;
    return tree.isFull();
}

/// Asks for the next unknown parts of an element. The number of children decides how to ask for
/// them, and the state of a document whether to ask for them at all.
void AtspiTreeReader::advance(const NodePtr& node) {
    if (!node->hasRole)
        return ask(node, atspi::accessible, "GetRole", &AtspiTreeReader::handleRole);
    if (!tree.isInScope(*node))
        return;
    if (!node->hasDetails)
        return askDetails(node);
    if (tree.lacksState(*node)) {
        ask(node, atspi::accessible, "GetState", &AtspiTreeReader::handleState);
        if (node->isDocument())
            askDocument(node);
    } else if (tree.lacksChildren(*node)) {
        askChildren(node);
    }
    // To the end: Firefox returns nothing for a range that is longer than the text.
    if (tree.lacksText(*node))
        ask(node, atspi::text, "GetText", &AtspiTreeReader::handleText, {}, {0, -1});
    if (tree.texts() == AtspiTree::Texts::all)
        askRoleName(*node);
    settle(node);
}

/// Queues an element again, or marks it as read, once all calls about it have been answered.
void AtspiTreeReader::settle(const NodePtr& node) {
    if (node->fetch.inFlight > 0 || !tree.isInScope(*node))
        return;
    if (!tree.isKnown(*node))
        return enqueue(node);
    ++readSinceCheck;
    node->markRead();
}

void AtspiTreeReader::ask(const NodePtr& node, const char* interface, const char* method,
                          Handler handler, std::initializer_list<const char*> texts,
                          std::initializer_list<std::int32_t> numbers) {
    ++inFlight;
    ++node->fetch.inFlight;
    calls.send({node->reference, interface, method, texts, numbers},
               lifetime.guard([this, handler, weak = std::weak_ptr(node)](GVariant* reply) {
                   --inFlight;
                   if (const auto asked = weak.lock(); asked && !asked->isDropped) {
                       --asked->fetch.inFlight;
                       (this->*handler)(*asked, reply);
                       settle(asked);
                   }
                   resume();
               }));
}

void AtspiTreeReader::askProperty(const NodePtr& node, const char* name, Handler handler) {
    ask(node, atspi::properties, "Get", handler, {atspi::accessible, name});
}

/// All properties at once from toolkits known to support that: some programs crash at it.
void AtspiTreeReader::askDetails(const NodePtr& node) {
    if (traits.toolkit != AtspiToolkit::unknown)
        return ask(node, atspi::properties, "GetAll", &AtspiTreeReader::handleDetails,
                   {atspi::accessible});
    askProperty(node, "Name", &AtspiTreeReader::handleName);
    askProperty(node, "Description", &AtspiTreeReader::handleDescription);
    askProperty(node, "ChildCount", &AtspiTreeReader::handleCount);
}

/// Each program has its document's address under one of two keys, and "" under the other.
void AtspiTreeReader::askDocument(const NodePtr& node) {
    for (const char* const key : {"DocURL", "URI"}) {
        const bool isOthers = std::string_view(key) == "URI"
                                  ? traits.toolkit == AtspiToolkit::gecko
                                  : traits.toolkit == AtspiToolkit::chromium;
        if (!isOthers)
            ask(node, atspi::document, "GetAttributeValue", &AtspiTreeReader::handleAddress, {key});
    }
}

/// The name of a role is asked for once, of the first element that has it.
void AtspiTreeReader::askRoleName(const Node& node) {
    if (!traits.roleNames.try_emplace(node.atspiRole).second)
        return;
    ++inFlight;
    calls.send({node.reference, atspi::accessible, "GetLocalizedRoleName"},
               lifetime.guard([this, role = node.atspiRole](GVariant* reply) {
                   --inFlight;
                   traits.roleNames[role] = decodeText(reply).value_or("");
                   resume();
               }));
}

/// All at once, but one by one where there are very many: the first ones, as many as the budget has
/// elements, and half as many from the end.
void AtspiTreeReader::askChildren(const NodePtr& node) {
    constexpr int batch = 32;
    const int most = tree.extent().maxElements;
    if (node->childCount <= most || !node->hasManyChildren())
        return ask(node, atspi::accessible, "GetChildren", &AtspiTreeReader::handleChildren);
    const int fromEnd = std::min(most / 2, node->childCount - most);
    if (node->nextChild >= most + fromEnd) {
        node->nextChild = 0;
        return adoptChildren(*node, std::exchange(node->listed, {}));
    }
    const auto end = std::min(node->nextChild + batch, most + fromEnd);
    for (; node->nextChild < end; ++node->nextChild) {
        const auto index = node->nextChild < most
                               ? node->nextChild
                               : node->childCount - fromEnd + (node->nextChild - most);
        ask(node, atspi::accessible, "GetChildAtIndex", &AtspiTreeReader::handleChild, {}, {index});
    }
}

void AtspiTreeReader::handleRole(Node& node, GVariant* reply) {
    node.setRole(decodeNumber(reply));
}

void AtspiTreeReader::handleDetails(Node& node, GVariant* reply) {
    node.setDetails(decodeDetails(reply).value_or(AtspiDetails{{}, {}, {}, 0}));
    forgetChildrenOfNone(node);
}

void AtspiTreeReader::handleName(Node& node, GVariant* reply) {
    node.setTitle(decodeTextProperty(reply).value_or(""));
}

void AtspiTreeReader::handleDescription(Node& node, GVariant* reply) {
    node.setDescription(decodeTextProperty(reply).value_or(""));
}

void AtspiTreeReader::handleCount(Node& node, GVariant* reply) {
    node.setChildCount(decodeCountProperty(reply).value_or(0));
    forgetChildrenOfNone(node);
}

/// Of an element without children, no list is asked for.
void AtspiTreeReader::forgetChildrenOfNone(Node& node) {
    if (node.childCount == 0 && !node.children.empty())
        tree.setChildren(node, {});
}

void AtspiTreeReader::handleState(Node& node, GVariant* reply) {
    node.setStates({.selected = hasState(reply, AtspiState::selected),
                    .showing = hasState(reply, AtspiState::showing),
                    .visible = hasState(reply, AtspiState::visible),
                    .managesDescendants = hasState(reply, AtspiState::managesDescendants)});
}

void AtspiTreeReader::handleAddress(Node& node, GVariant* reply) {
    if (auto address = decodeText(reply); address && !address->empty())
        node.setAddress(std::move(*address));
}

void AtspiTreeReader::handleText(Node& node, GVariant* reply) {
    node.setText(decodeText(reply).value_or(""));
}

void AtspiTreeReader::handleChildren(Node& node, GVariant* reply) {
    const auto most = static_cast<std::size_t>(tree.extent().maxElements);
    adoptChildren(
        node,
        decodeReferences(reply, node.reference.bus, most).value_or(std::vector<AtspiReference>()));
}

void AtspiTreeReader::handleChild(Node& node, GVariant* reply) {
    if (auto child = decodeReference(reply, node.reference.bus))
        node.listed.push_back(std::move(*child));
}

void AtspiTreeReader::adoptChildren(Node& node, std::vector<AtspiReference> references) {
    tree.setChildren(node, std::move(references));
    for (const auto& child : node.children)
        visit(child);
}

} // namespace quorva
