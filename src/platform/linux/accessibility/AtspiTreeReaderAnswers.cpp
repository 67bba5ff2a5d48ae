// The reader's questions to an application about one element, and what it makes of the answers.
#include "platform/linux/accessibility/AtspiTreeReader.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quorva {
namespace {

/// Elements with more children than this are asked whether they make them up as they are asked for,
/// as spreadsheets do.
constexpr std::int32_t manyChildren = 1000;
constexpr int childrenAtOnce = 32; ///< when they are asked for one by one

} // namespace

bool AtspiTreeReader::wantsState(const Node& node) const {
    return node.isDocument() || node.childCount > manyChildren;
}

/// What Chromium has to say of the text of an element, the static texts below it say too.
bool AtspiTreeReader::wantsText(const Node& node) const {
    const bool mayHaveText =
        traits.toolkit == AtspiToolkit::chromium ? node.isEditable() : node.mayHaveText();
    return texts == Texts::all && mayHaveText;
}

bool AtspiTreeReader::wantsChildren(const Node& node) const {
    const bool isCountless = node.managesDescendants && node.childCount > manyChildren;
    return node.depth + 1 < extent.maxDepth && node.childCount != 0 && !isCountless &&
           !(node.parent != nullptr && node.isDocument() && !node.isShown);
}

/// Asks for what comes next of an element. The number of children says how to ask for them, and the
/// state of a document whether to ask at all.
void AtspiTreeReader::advance(const NodePtr& node) {
    if (!node->hasRole)
        return ask(node, atspi::accessible, "GetRole", &AtspiTreeReader::takeRole);
    if (!isPart(*node) || node->depth >= extent.maxDepth)
        return;
    if (!node->hasDetails)
        return askDetails(node);
    if (!node->hasState && wantsState(*node)) {
        ask(node, atspi::accessible, "GetState", &AtspiTreeReader::takeState);
        if (node->isDocument())
            askDocument(node);
    } else if (!node->hasChildren && wantsChildren(*node)) {
        askChildren(node);
    }
    // To the end: Firefox has nothing to say of the first so many characters of a shorter text.
    if (!node->hasText && wantsText(*node))
        ask(node, atspi::text, "GetText", &AtspiTreeReader::takeText, {}, {0, -1});
    if (texts == Texts::all)
        askRoleName(*node);
    settle(node);
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
                          Answer answer, std::initializer_list<const char*> textParameters,
                          std::initializer_list<std::int32_t> numberParameters) {
    ++asked;
    ++node->asked;
    calls.send({node->reference, interface, method, textParameters, numberParameters},
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
    ++readSinceLook;
    if (!node->wasRead) {
        node->wasRead = true;
        node->hasChanged();
    }
}

void AtspiTreeReader::askProperty(const NodePtr& node, const char* name, Answer answer) {
    ask(node, atspi::properties, "Get", answer, {atspi::accessible, name});
}

/// All properties at once from those programs that bear the question: some end at it.
void AtspiTreeReader::askDetails(const NodePtr& node) {
    if (traits.toolkit != AtspiToolkit::unknown)
        return ask(node, atspi::properties, "GetAll", &AtspiTreeReader::takeDetails,
                   {atspi::accessible});
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
            ask(node, atspi::document, "GetAttributeValue", &AtspiTreeReader::takeAddress, {key});
    }
}

void AtspiTreeReader::askChildren(const NodePtr& node) {
    if (node->childCount <= std::max(extent.maxElements, manyChildren))
        return ask(node, atspi::accessible, "GetChildren", &AtspiTreeReader::takeChildren);
    if (node->nextChild >= extent.maxElements) {
        node->nextChild = 0;
        return adopt(*node, std::exchange(node->listed, {}));
    }
    const auto end = std::min(node->nextChild + childrenAtOnce, extent.maxElements);
    while (node->nextChild < end)
        ask(node, atspi::accessible, "GetChildAtIndex", &AtspiTreeReader::takeChild, {},
            {node->nextChild++});
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

void AtspiTreeReader::takeChild(Node& node, GVariant* reply) {
    if (auto child = decodeReference(reply, node.reference.bus))
        node.listed.push_back(std::move(*child));
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

} // namespace quorva
