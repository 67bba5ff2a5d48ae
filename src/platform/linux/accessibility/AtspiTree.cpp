#include "platform/linux/accessibility/AtspiTree.h"

#include "platform/TreeWalk.h"

#include <algorithm>
#include <string_view>

namespace quorva {
namespace {

std::shared_ptr<AtspiNode> makeNode(AtspiReference reference, AtspiNode* parent,
                                    std::uint32_t index) {
    auto node = std::make_shared<AtspiNode>();
    node->reference = std::move(reference);
    node->parent = parent;
    if (parent != nullptr) {
        node->depth = parent->depth + 1;
        node->position = parent->position;
        node->position.push_back(index);
    }
    return node;
}

void count(const AccessibleElement& element, int lap, WalkBudget& budget) {
    budget.count(lap);
    for (std::size_t index = 0; index < element.children.size(); ++index)
        count(*element.children[index], lapOf(lap, element.children[index]->role, index), budget);
}

/// The elements that a walk meets; null when it does not meet the first one.
AccessibleElementPtr metPart(const AccessibleElementPtr& tree, int lap, WalkBudget& budget) {
    if (!budget.meets(lap))
        return nullptr;
    std::vector<AccessibleElementPtr> children;
    children.reserve(tree->children.size());
    for (std::size_t index = 0; index < tree->children.size(); ++index) {
        const auto& child = tree->children[index];
        if (auto part = metPart(child, lapOf(lap, child->role, index), budget))
            children.push_back(std::move(part));
    }
    if (children == tree->children)
        return tree;
    auto shorter = std::make_shared<AccessibleElement>(*tree);
    shorter->children = std::move(children);
    return shorter;
}

/// A reading goes a little beyond the budget.
AccessibleElementPtr cutToBudget(const AccessibleElementPtr& tree, int maxElements) {
    WalkBudget budget(maxElements);
    count(*tree, 0, budget);
    if (!budget.isUsedUp())
        return tree;
    budget.settle();
    return metPart(tree, 0, budget);
}

} // namespace

AtspiTree::AtspiTree(const AtspiApplicationTraits& traits_, AtspiReference root)
    : traits(traits_), top(makeNode(std::move(root), nullptr, 0)) {
    add(*top);
}

void AtspiTree::add(AtspiNode& node) {
    nodesOfPath.emplace(node.reference.path, &node);
}

void AtspiTree::drop(AtspiNode& node) {
    node.isDropped = true;
    const auto [first, last] = nodesOfPath.equal_range(node.reference.path);
    const auto found =
        std::find_if(first, last, [&](const auto& entry) { return entry.second == &node; });
    if (found != last)
        nodesOfPath.erase(found);
    for (const auto& child : node.children)
        drop(*child);
}

void AtspiTree::setScope(const TreeExtent& extent, Texts texts) {
    if (extent != scope) // other elements may be part of the tree now
        for (const auto& [path, node] : nodesOfPath)
            node->published.reset();
    scope = extent;
    scopeOfTexts = texts;
}

bool AtspiTree::isPart(const AtspiNode& node) const {
    if (!node.hasRole)
        return false;
    if (node.parent == nullptr)
        return true;
    const bool isReached =
        scope.descends == nullptr ||
        scope.descends(node.parent->content.role, node.content.role, node.parent->depth);
    return isReached &&
           (scopeOfTexts == Texts::none || !node.hasState || node.isShown || !node.isPage());
}

bool AtspiTree::isInScope(const AtspiNode& node) const {
    return isPart(node) && node.depth < scope.maxDepth;
}

bool AtspiTree::isKnown(const AtspiNode& node) const {
    return node.hasRole && node.hasDetails && !lacksState(node) && !lacksText(node) &&
           !lacksChildren(node);
}

bool AtspiTree::lacksState(const AtspiNode& node) const {
    return !node.hasState && (node.isDocument() || node.isTab() || node.hasManyChildren());
}

bool AtspiTree::lacksText(const AtspiNode& node) const {
    return !node.hasText && wantsText(node);
}

/// Chromium repeats the texts of an element in the static texts below it.
bool AtspiTree::wantsText(const AtspiNode& node) const {
    const bool mayHaveText =
        traits.toolkit == AtspiToolkit::chromium ? node.isEditable() : node.mayHaveText();
    return scopeOfTexts == Texts::all && mayHaveText;
}

bool AtspiTree::lacksChildren(const AtspiNode& node) const {
    const bool isEndless = node.managesDescendants && node.hasManyChildren();
    const bool isLeaf = scopeOfTexts == Texts::none
                            ? node.isDocument() || node.isTab()
                            : node.parent != nullptr && !node.isShown && node.isPage();
    return !node.hasChildren && node.depth + 1 < scope.maxDepth && node.childCount != 0 &&
           !isEndless && !isLeaf;
}

bool AtspiTree::forEachUnknown(const std::function<void(const NodePtr&)>& visit) const {
    WalkBudget budget(scope.maxElements);
    countInScope(*top, 0, budget);
    const bool isUsedUp = budget.isUsedUp();
    budget.settle();
    forEachUnknown(top, 0, budget, visit);
    return isUsedUp;
}

bool AtspiTree::isFull() const {
    bool isAnyUnknown = false;
    const bool isUsedUp = forEachUnknown([&](const NodePtr&) { isAnyUnknown = true; });
    return isUsedUp && !isAnyUnknown;
}

void AtspiTree::countInScope(const AtspiNode& node, int lap, WalkBudget& budget) const {
    if (!isInScope(node))
        return;
    budget.count(lap);
    for (const auto& child : node.children)
        countInScope(*child, lapOf(*child, lap), budget);
}

/// An element of which not even the role is known may be a list, which the walk comes to first.
void AtspiTree::forEachUnknown(const NodePtr& node, int lap, WalkBudget& budget,
                               const std::function<void(const NodePtr&)>& visit) const {
    if (!node->hasRole) {
        if (budget.comesTo(lap))
            visit(node);
        return;
    }
    if (!isInScope(*node) || !budget.meets(lap))
        return;
    if (!isKnown(*node))
        visit(node);
    for (const auto& child : node->children)
        forEachUnknown(child, lapOf(*child, lap), budget, visit);
}

int AtspiTree::lapOf(const AtspiNode& node, int parentsLap) {
    return node.hasRole ? quorva::lapOf(parentsLap, node.content.role, node.position.back())
                        : parentsLap;
}

int AtspiTree::lapOf(const AtspiNode& node) {
    return node.parent != nullptr ? lapOf(node, lapOf(*node.parent)) : 0;
}

void AtspiTree::setChildren(AtspiNode& node, std::vector<AtspiReference> references) {
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
            node.children.back()->moveTo(index);
        } else {
            node.children.push_back(makeNode(std::move(reference), &node, index));
            add(*node.children.back());
        }
    }
    for (const auto& [path, child] : known)
        drop(*child);
    if (node.children != former)
        node.markChanged();
}

/// The pages that claim to be shown are those of the window. Where none does, the window is
/// minimised, and the pages shown before are still its content.
void AtspiTree::settleDocuments() {
    if (!showsDocument())
        return;
    for (const auto& [path, node] : nodesOfPath)
        if (node->isDocument() && node->hasState)
            node->setShown(node->isShowing);
}

void AtspiTree::invalidate() {
    for (const auto& [path, node] : nodesOfPath)
        node->invalidate();
}

/// Not every program signals that it shows another document in place of one.
void AtspiTree::invalidatePagesAndTabs() {
    bool isAnyFound = false;
    for (const auto& [path, node] : nodesOfPath) {
        if (!node->isTab() && !node->isPage())
            continue;
        isAnyFound = true;
        node->hasDetails = node->hasState = false;
        for (auto* above = node->parent; above != nullptr; above = above->parent)
            above->invalidateChildren();
    }
    if (!isAnyFound)
        invalidate();
}

void AtspiTree::invalidateDocuments() {
    for (const auto& [path, node] : nodesOfPath)
        if (node->isDocument())
            node->hasState = false;
}

void AtspiTree::invalidateFrames() {
    for (const auto& [path, node] : nodesOfPath) {
        if (node->is(AtspiRole::internalFrame))
            node->invalidateChildren();
        if (node->isDocument() && node->parent != nullptr)
            node->parent->invalidateChildren();
    }
}

bool AtspiTree::invalidate(const AtspiEvent& event) {
    bool isPartOfTree = false;
    const auto [first, last] = nodesOfPath.equal_range(event.path);
    for (auto entry = first; entry != last; ++entry)
        isPartOfTree = invalidate(*entry->second, event.change) || isPartOfTree;
    if (isPartOfTree && event.change == AtspiChange::document)
        invalidate();
    return isPartOfTree;
}

bool AtspiTree::invalidate(AtspiNode& node, AtspiChange change) {
    if (change == AtspiChange::visibility && node.isDocument()) {
        node.hasState = false;
        return true;
    }
    const bool isContent = change == AtspiChange::children || change == AtspiChange::text;
    if (!isPart(node) || (isContent && scopeOfTexts == Texts::none && node.isDocument()))
        return false;
    switch (change) {
    case AtspiChange::children:
        node.invalidateChildren();
        return true;
    case AtspiChange::name:
        node.hasDetails = false;
        return true;
    case AtspiChange::text:
        node.hasText = false;
        return wantsText(node);
    case AtspiChange::gone:
        return node.parent != nullptr && invalidate(*node.parent, AtspiChange::children);
    case AtspiChange::document:
        return true;
    case AtspiChange::visibility:
    case AtspiChange::windows:
    case AtspiChange::none:
        break;
    }
    return false;
}

std::vector<std::pair<AtspiReference, std::string>> AtspiTree::children() const {
    std::vector<std::pair<AtspiReference, std::string>> listed;
    for (const auto& child : top->children)
        listed.emplace_back(child->reference, child->content.title);
    return listed;
}

bool AtspiTree::showsDocument() const {
    return std::any_of(nodesOfPath.begin(), nodesOfPath.end(), [](const auto& entry) {
        return entry.second->isDocument() && entry.second->hasState && entry.second->isShowing;
    });
}

std::vector<const AtspiNode*> AtspiTree::documents() const {
    std::vector<const AtspiNode*> found;
    for (const auto& [path, node] : nodesOfPath)
        if (node->isDocument())
            found.push_back(node);
    std::sort(found.begin(), found.end(),
              [](const auto* a, const auto* b) { return a->position < b->position; });
    return found;
}

std::vector<const AtspiNode*> AtspiTree::pages() const {
    auto found = documents();
    std::erase_if(found, [](const auto* node) { return !node->isPage(); });
    return found;
}

std::vector<AccessibleTab> AtspiTree::tabs() const {
    std::vector<const AtspiNode*> found;
    for (const auto& [path, node] : nodesOfPath)
        if (node->isTab() && node->isVisible)
            found.push_back(node);
    std::sort(found.begin(), found.end(),
              [](const auto* a, const auto* b) { return a->position < b->position; });
    std::vector<AccessibleTab> tabs;
    tabs.reserve(found.size());
    for (const auto* const node : found)
        tabs.push_back({node->content.title, node->isSelected});
    return tabs;
}

AccessibleElementPtr AtspiTree::snapshot() {
    const auto all = publish(*top);
    if (all != everything) {
        everything = all;
        withinBudget = cutToBudget(all, scope.maxElements);
    }
    return withinBudget;
}

AccessibleElementPtr AtspiTree::publish(AtspiNode& node) {
    if (node.published)
        return node.published;
    auto element = std::make_shared<AccessibleElement>(node.content);
    if (const auto name = traits.roleNames.find(node.atspiRole); name != traits.roleNames.end())
        element->roleDescription = name->second;
    for (const auto& child : node.children)
        if (isInScope(*child) && child->wasRead)
            element->children.push_back(publish(*child));
    if (traits.toolkit == AtspiToolkit::chromium && element->value.empty())
        element->value = joinedTexts(*element);
    node.published = std::move(element);
    return node.published;
}

} // namespace quorva
