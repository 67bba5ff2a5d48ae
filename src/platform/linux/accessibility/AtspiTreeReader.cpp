#include "platform/linux/accessibility/AtspiTreeReader.h"

#include <algorithm>
#include <utility>

namespace quorva {
namespace {

/// The tree as far as a walk comes that ends with the budget; a reading goes a little beyond.
AccessibleElementPtr firstOf(const AccessibleElementPtr& tree, int& budget) {
    --budget;
    for (auto child = tree->children.begin(); child != tree->children.end(); ++child) {
        const auto first = budget > 0 ? firstOf(*child, budget) : nullptr;
        if (first == *child)
            continue;
        auto cut = std::make_shared<AccessibleElement>(*tree);
        cut->children.assign(tree->children.begin(), child);
        if (first)
            cut->children.push_back(first);
        return cut;
    }
    return tree;
}

} // namespace

struct AtspiTreeReader::Later {
    std::vector<std::uint32_t> position;
    std::weak_ptr<Node> node;

    bool operator<(const Later& other) const { return other.position < position; }
};

AtspiTreeReader::AtspiTreeReader(AtspiCalls& calls_, AtspiApplicationTraits& traits_,
                                 AtspiReference root)
    : calls(calls_), traits(traits_), top(makeNode(std::move(root), nullptr, 0)) {
    enter(*top);
}

AtspiTreeReader::~AtspiTreeReader() = default;

const AtspiReference& AtspiTreeReader::root() const {
    return top->reference;
}

AtspiTreeReader::NodePtr AtspiTreeReader::makeNode(AtspiReference reference, Node* parent,
                                                   std::uint32_t index) {
    auto node = std::make_shared<Node>();
    node->reference = std::move(reference);
    node->parent = parent;
    if (parent != nullptr) {
        node->depth = parent->depth + 1;
        node->position = parent->position;
        node->position.push_back(index);
    }
    return node;
}

void AtspiTreeReader::enter(Node& node) {
    nodesOfPath.emplace(node.reference.path, &node);
}

void AtspiTreeReader::leave(Node& node) {
    node.isDropped = true;
    const auto [first, last] = nodesOfPath.equal_range(node.reference.path);
    const auto found =
        std::find_if(first, last, [&](const auto& entry) { return entry.second == &node; });
    if (found != last)
        nodesOfPath.erase(found);
    for (const auto& child : node.children)
        leave(*child);
}

void AtspiTreeReader::read(const TreeExtent& extent_, Texts texts_, std::function<void()> done_) {
    if (extent != extent_) // what is part of the tree may be something else now
        for (const auto& [path, node] : nodesOfPath)
            node->published.reset();
    extent = extent_;
    texts = texts_;
    done = std::move(done_);
    isOver = false;
    int budget = extent.maxElements;
    visit(top, budget);
    resume();
}

/// Queues what has to be asked for, as far as the walk comes.
void AtspiTreeReader::visit(const NodePtr& node, int& budget) {
    if (!node->hasRole || (isPart(*node) && !isKnown(*node)))
        enqueue(node);
    if (!isPart(*node) || node->depth >= extent.maxDepth || --budget < 0)
        return;
    for (const auto& child : node->children)
        if (budget > 0)
            visit(child, budget);
}

void AtspiTreeReader::enqueue(const NodePtr& node) {
    if (isOver || node->isQueued || node->asked > 0)
        return;
    node->isQueued = true;
    queue.push({node->position, node});
}

void AtspiTreeReader::resume() {
    if (!done)
        return;
    if (isEnough()) { // what is in flight is taken, and nothing follows it
        isOver = true;
        clearQueue();
    }
    while (!queue.empty() && maySend()) {
        const auto node = queue.top().node.lock();
        queue.pop();
        if (!node || node->isDropped)
            continue;
        node->isQueued = false;
        advance(node);
    }
    if (queue.empty() && asked == 0)
        finish();
}

/// What is asked while others are awaited lies further on in the walk. A tree that is wide at every
/// depth would grow there without end, so in a crowd there is one at a time.
bool AtspiTreeReader::maySend() const {
    constexpr std::size_t crowd = 8; // times what is asked for
    const bool isCrowded =
        nodesOfPath.size() > crowd * static_cast<std::size_t>(extent.maxElements);
    return calls.room() > 0 && (asked == 0 || !isCrowded);
}

void AtspiTreeReader::clearQueue() {
    for (; !queue.empty(); queue.pop())
        if (const auto node = queue.top().node.lock())
            node->isQueued = false;
}

void AtspiTreeReader::finish() {
    isComplete = true;
    settleDocuments();
    const auto call = std::exchange(done, nullptr);
    call();
}

/// The documents that say that they are shown are those of the window. Where none does, the window
/// is minimised, and those shown before still are its content.
void AtspiTreeReader::settleDocuments() {
    if (!showsDocument())
        return;
    for (const auto& [path, node] : nodesOfPath)
        if (node->isDocument() && node->hasState && node->isShown != node->isShowing) {
            node->isShown = node->isShowing;
            node->hasChanged();
        }
}

/// Whether the walk would end, for its budget, within what has been read. That costs a walk, so it
/// is looked at from time to time.
bool AtspiTreeReader::isEnough() {
    constexpr int interval = 256;
    if (readSinceLook < interval || static_cast<int>(nodesOfPath.size()) < extent.maxElements)
        return false;
    readSinceLook = 0;
    int budget = extent.maxElements;
    return isPrefixRead(*top, budget) && budget <= 0;
}

bool AtspiTreeReader::isPrefixRead(const Node& node, int& budget) const {
    if (budget <= 0)
        return true;
    if (!node.hasRole)
        return false;
    if (!isPart(node) || node.depth >= extent.maxDepth)
        return true;
    if (!isKnown(node))
        return false;
    --budget;
    return std::all_of(node.children.begin(), node.children.end(),
                       [&](const NodePtr& child) { return isPrefixRead(*child, budget); });
}

bool AtspiTreeReader::descends(const Node& node) const {
    return node.parent == nullptr || extent.descends == nullptr ||
           extent.descends(node.parent->content.role, node.content.role, node.parent->depth);
}

bool AtspiTreeReader::isPart(const Node& node) const {
    if (!node.hasRole || !descends(node))
        return false;
    return node.parent == nullptr || !node.isDocument() || !node.hasState || node.isShown;
}

bool AtspiTreeReader::isKnown(const Node& node) const {
    return node.hasRole && node.hasDetails && (node.hasState || !wantsState(node)) &&
           (node.hasText || !wantsText(node)) && (node.hasChildren || !wantsChildren(node));
}

void AtspiTreeReader::forget() {
    for (const auto& [path, node] : nodesOfPath)
        node->forget();
}

/// Not every program tells when it shows another document in the place of one.
void AtspiTreeReader::forgetWayToDocuments() {
    for (const auto& [path, node] : nodesOfPath) {
        if (!node->isDocument() || !node->isShown || isWithinDocument(*node))
            continue;
        node->hasState = false;
        for (auto* above = node->parent; above != nullptr; above = above->parent)
            above->forgetChildren();
    }
}

void AtspiTreeReader::forgetDocuments() {
    for (const auto& [path, node] : nodesOfPath)
        if (node->isDocument())
            node->hasState = false;
}

bool AtspiTreeReader::isWithinDocument(const Node& node) {
    for (const auto* above = node.parent; above != nullptr; above = above->parent)
        if (above->isDocument())
            return true;
    return false;
}

bool AtspiTreeReader::showsDocument() const {
    return std::any_of(nodesOfPath.begin(), nodesOfPath.end(), [](const auto& entry) {
        return entry.second->isDocument() && entry.second->hasState && entry.second->isShowing;
    });
}

bool AtspiTreeReader::hasDocument() const {
    return std::any_of(nodesOfPath.begin(), nodesOfPath.end(), [](const auto& entry) {
        const auto& node = *entry.second;
        return node.isDocument() && node.isShown && node.childCount != 0;
    });
}

bool AtspiTreeReader::note(const AtspiEvent& event) {
    bool matters = false;
    const auto [first, last] = nodesOfPath.equal_range(event.path);
    for (auto entry = first; entry != last; ++entry)
        matters = noteAt(*entry->second, event.change) || matters;
    if (matters && event.change == AtspiChange::document)
        forget();
    return matters;
}

bool AtspiTreeReader::noteAt(Node& node, AtspiChange change) {
    if (change == AtspiChange::visibility && node.isDocument()) {
        node.hasState = false;
        return true;
    }
    if (!isPart(node))
        return false;
    switch (change) {
    case AtspiChange::children:
        node.forgetChildren();
        return true;
    case AtspiChange::name:
        node.hasDetails = false;
        return true;
    case AtspiChange::text:
        node.hasText = false;
        return wantsText(node);
    case AtspiChange::gone:
        return node.parent != nullptr && noteAt(*node.parent, AtspiChange::children);
    case AtspiChange::document:
        return true;
    case AtspiChange::visibility:
    case AtspiChange::windows:
    case AtspiChange::none:
        break;
    }
    return false;
}

std::vector<std::pair<AtspiReference, std::string>> AtspiTreeReader::listChildren() const {
    std::vector<std::pair<AtspiReference, std::string>> children;
    for (const auto& child : top->children)
        children.emplace_back(child->reference, child->content.title);
    return children;
}

AccessibleElementPtr AtspiTreeReader::tree() {
    if (!isComplete)
        return nullptr;
    const auto all = publish(*top);
    if (all != everything) {
        everything = all;
        int budget = extent.maxElements;
        withinBudget = firstOf(all, budget);
    }
    return withinBudget;
}

/// Shares what has not changed with what was given out before.
AccessibleElementPtr AtspiTreeReader::publish(Node& node) {
    if (node.published)
        return node.published;
    auto element = std::make_shared<AccessibleElement>(node.content);
    if (const auto name = traits.roleNames.find(node.atspiRole); name != traits.roleNames.end())
        element->roleDescription = name->second;
    for (const auto& child : node.children)
        if (isPart(*child) && child->depth < extent.maxDepth && child->wasRead)
            element->children.push_back(publish(*child));
    if (traits.toolkit == AtspiToolkit::chromium && element->value.empty())
        element->value = joinedTexts(*element);
    return node.published = std::move(element);
}

} // namespace quorva
