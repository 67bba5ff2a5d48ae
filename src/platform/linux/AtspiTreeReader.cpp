#include "platform/linux/AtspiTreeReader.h"

#include <algorithm>
#include <utility>

namespace quorva {
namespace {

/// Elements with more children than this are asked whether they make them up as they are asked for,
/// as spreadsheets do.
constexpr std::int32_t manyChildren = 1000;
constexpr int childrenAtOnce = 32; ///< when they are asked for one by one

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
    if (node->isQueued || node->asked > 0)
        return;
    node->isQueued = true;
    queue.push({node->position, node});
}

void AtspiTreeReader::resume() {
    if (!done)
        return;
    if (isEnough())
        clearQueue();
    while (!queue.empty() && calls.room() > 0) {
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

bool AtspiTreeReader::wantsState(const Node& node) const {
    return node.isDocument() || node.childCount > manyChildren;
}

bool AtspiTreeReader::wantsText(const Node& node) const {
    return texts == Texts::all && node.mayHaveText();
}

bool AtspiTreeReader::wantsChildren(const Node& node) const {
    const bool isCountless = node.managesDescendants && node.childCount > manyChildren;
    return node.depth + 1 < extent.maxDepth && node.childCount != 0 && !isCountless &&
           !(node.parent != nullptr && node.isDocument() && !node.isShown);
}

bool AtspiTreeReader::isKnown(const Node& node) const {
    return node.hasRole && node.hasDetails && (node.hasState || !wantsState(node)) &&
           (node.hasText || !wantsText(node)) && (node.hasChildren || !wantsChildren(node));
}

/// Asks for what comes next of an element. The number of children says how to ask for them, and the
/// state of a document whether to ask at all.
void AtspiTreeReader::advance(const NodePtr& node) {
    if (!node->hasRole)
        return ask(node, atspi::accessible, "GetRole", nullptr, &AtspiTreeReader::takeRole);
    if (!isPart(*node) || node->depth >= extent.maxDepth)
        return;
    if (!node->hasDetails)
        return askDetails(node);
    if (!node->hasState && wantsState(*node)) {
        ask(node, atspi::accessible, "GetState", nullptr, &AtspiTreeReader::takeState);
        if (node->isDocument())
            askDocument(node);
    } else if (!node->hasChildren && wantsChildren(*node)) {
        askChildren(node);
    }
    if (!node->hasText && wantsText(*node))
        ask(node, atspi::text, "GetText", g_variant_new("(ii)", 0, -1), // Firefox bears no more
            &AtspiTreeReader::takeText);
    if (texts == Texts::all)
        askRoleName(*node);
}

/// The name of a role is asked for once, of whichever element has it first.
void AtspiTreeReader::askRoleName(const Node& node) {
    if (!traits.roleNames.try_emplace(node.atspiRole).second)
        return;
    ++asked;
    calls.send({node.reference, atspi::accessible, "GetLocalizedRoleName"},
               lifetime.guard([this, role = node.atspiRole](GVariant* reply) {
                   --asked;
                   traits.roleNames[role] = decodeText(reply).value_or("");
                   resume();
               }));
}

void AtspiTreeReader::ask(const NodePtr& node, const char* interface, const char* method,
                          GVariant* parameters, Answer answer) {
    ++asked;
    ++node->asked;
    calls.send({node->reference, interface, method, parameters},
               lifetime.guard([this, answer, weak = std::weak_ptr(node)](GVariant* reply) {
                   --asked;
                   if (const auto read = weak.lock(); read && !read->isDropped) {
                       --read->asked;
                       (this->*answer)(*read, reply);
                       settle(read);
                   }
                   resume();
               }));
}

/// What comes after an answer.
void AtspiTreeReader::settle(const NodePtr& node) {
    if (node->asked > 0 || !isPart(*node) || node->depth >= extent.maxDepth)
        return;
    if (!isKnown(*node))
        return enqueue(node);
    if (!node->wasRead) {
        node->wasRead = true;
        ++readSinceLook;
        node->hasChanged();
    }
}

void AtspiTreeReader::askProperty(const NodePtr& node, const char* name, Answer answer) {
    ask(node, atspi::properties, "Get", g_variant_new("(ss)", atspi::accessible, name), answer);
}

/// All properties at once from those programs that bear the question: some end at it.
void AtspiTreeReader::askDetails(const NodePtr& node) {
    if (traits.toolkit != AtspiToolkit::unknown)
        return ask(node, atspi::properties, "GetAll", g_variant_new("(s)", atspi::accessible),
                   &AtspiTreeReader::takeDetails);
    askProperty(node, "Name", &AtspiTreeReader::takeName);
    askProperty(node, "Description", &AtspiTreeReader::takeDescription);
    askProperty(node, "ChildCount", &AtspiTreeReader::takeCount);
}

/// Each program knows its document's address under one of two keys, and has "" under the other.
void AtspiTreeReader::askDocument(const NodePtr& node) {
    for (const char* const key : {"DocURL", "URI"}) {
        const bool isOthers = std::string_view(key) == "URI"
                                  ? traits.toolkit == AtspiToolkit::gecko
                                  : traits.toolkit == AtspiToolkit::chromium;
        if (!isOthers)
            ask(node, atspi::document, "GetAttributeValue", g_variant_new("(s)", key),
                &AtspiTreeReader::takeAddress);
    }
}

void AtspiTreeReader::askChildren(const NodePtr& node) {
    if (node->childCount <= std::max(extent.maxElements, manyChildren))
        return ask(node, atspi::accessible, "GetChildren", nullptr, &AtspiTreeReader::takeChildren);
    const auto end = std::min(node->nextChild + childrenAtOnce, extent.maxElements);
    while (node->nextChild < end)
        ask(node, atspi::accessible, "GetChildAtIndex", g_variant_new("(i)", node->nextChild++),
            &AtspiTreeReader::takeChild);
}

void AtspiTreeReader::takeRole(Node& node, GVariant* reply) {
    const auto role = decodeNumber(reply);
    node.hasRole = true;
    node.atspiRole = role.value_or(0);
    node.content.role = role ? roleOf(*role) : AccessibilityRole::unreadable;
    node.hasChanged();
}

void AtspiTreeReader::takeDetails(Node& node, GVariant* reply) {
    auto details = decodeDetails(reply).value_or(AtspiDetails{{}, {}, {}, 0});
    node.change(node.content.title, readableText(std::move(details.name)));
    node.change(node.content.description, std::move(details.description));
    node.change(node.content.help, std::move(details.help));
    node.childCount = details.childCount;
    node.hasDetails = true;
}

void AtspiTreeReader::takeName(Node& node, GVariant* reply) {
    node.change(node.content.title, readableText(decodeTextProperty(reply).value_or("")));
}

void AtspiTreeReader::takeDescription(Node& node, GVariant* reply) {
    node.change(node.content.description, decodeTextProperty(reply).value_or(""));
}

void AtspiTreeReader::takeCount(Node& node, GVariant* reply) { // the last of three
    node.childCount = decodeCountProperty(reply).value_or(0);
    node.hasDetails = true;
}

void AtspiTreeReader::takeState(Node& node, GVariant* reply) {
    node.isShowing = hasState(reply, AtspiState::showing);
    node.managesDescendants = hasState(reply, AtspiState::managesDescendants);
    node.hasState = true;
    if (node.isShowing && !node.isShown) {
        node.isShown = true;
        node.hasChanged();
    }
}

void AtspiTreeReader::takeAddress(Node& node, GVariant* reply) {
    if (auto address = decodeText(reply); address && !address->empty())
        node.change(node.content.url, std::move(*address));
}

void AtspiTreeReader::takeText(Node& node, GVariant* reply) {
    node.change(node.content.value, readableText(decodeText(reply).value_or("")));
    node.hasText = true;
}

void AtspiTreeReader::takeChildren(Node& node, GVariant* reply) {
    adopt(node,
          decodeReferences(reply, node.reference.bus, static_cast<std::size_t>(extent.maxElements))
              .value_or(std::vector<AtspiReference>()));
}

/// An application answers in the order in which it was asked.
void AtspiTreeReader::takeChild(Node& node, GVariant* reply) {
    if (auto child = decodeReference(reply, node.reference.bus))
        node.listed.push_back(std::move(*child));
    if (node.asked == 0 && node.nextChild >= extent.maxElements) {
        node.nextChild = 0;
        adopt(node, std::exchange(node.listed, {}));
    }
}

/// Takes the children as they are now, and keeps what is known of those that were there before.
void AtspiTreeReader::adopt(Node& node, std::vector<AtspiReference> references) {
    node.hasChildren = true;
    const auto former = std::exchange(node.children, {});
    std::unordered_multimap<std::string_view, NodePtr> known;
    for (const auto& child : former)
        known.emplace(child->reference.path, child);
    for (std::uint32_t index = 0; index < references.size(); ++index) {
        auto& reference = references[index];
        const auto found = known.find(reference.path);
        if (found != known.end() && found->second->reference == reference) {
            node.children.push_back(found->second);
            known.erase(found);
            node.children.back()->place(index);
        } else {
            node.children.push_back(makeNode(std::move(reference), &node, index));
            enter(*node.children.back());
        }
    }
    for (const auto& [path, child] : known)
        leave(*child);
    if (node.children != former)
        node.hasChanged();
    for (const auto& child : node.children) {
        int budget = extent.maxElements;
        visit(child, budget);
    }
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
            above->hasDetails = above->hasChildren = false;
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
        return entry.second->isDocument() && entry.second->isShown;
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
        node.hasDetails = node.hasChildren = false; // the number of children is one of the details
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
    return isComplete ? publish(*top) : nullptr;
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
    return node.published = std::move(element);
}

} // namespace quorva
