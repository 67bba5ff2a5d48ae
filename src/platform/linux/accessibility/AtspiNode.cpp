#include "platform/linux/accessibility/AtspiNode.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace quorva {

bool AtspiNode::mayHaveText() const {
    switch (static_cast<AtspiRole>(atspiRole)) {
    case AtspiRole::passwordText:
    case AtspiRole::checkBox:
    case AtspiRole::frame:
    case AtspiRole::icon:
    case AtspiRole::image:
    case AtspiRole::menuItem:
    case AtspiRole::pageTab:
    case AtspiRole::pushButton:
    case AtspiRole::radioButton:
    case AtspiRole::separator:
    case AtspiRole::toggleButton:
        return false;
    case AtspiRole::label:
    case AtspiRole::staticText:
        return content.title.empty();
    default:
        return true;
    }
}

bool AtspiNode::isEditable() const {
    return is(AtspiRole::autocomplete) || is(AtspiRole::comboBox) || is(AtspiRole::entry) ||
           is(AtspiRole::spinButton) || is(AtspiRole::text);
}

bool AtspiNode::hasManyChildren() const {
    constexpr std::int32_t many = 1000;
    return childCount > many;
}

bool AtspiNode::isWithinDocument() const {
    for (const auto* above = parent; above != nullptr; above = above->parent)
        if (above->isDocument())
            return true;
    return false;
}

void AtspiNode::invalidate() {
    hasRole = hasState = hasText = false;
    invalidateChildren();
}

void AtspiNode::invalidateChildren() {
    hasDetails = hasChildren = false; // the number of children is one of the details
    listed.clear();
    nextChild = 0;
}

void AtspiNode::setRole(std::optional<std::uint32_t> role) {
    hasRole = true;
    atspiRole = role.value_or(0);
    content.role = role ? roleOf(*role) : AccessibilityRole::unreadable;
    markChanged();
}

void AtspiNode::setDetails(AtspiDetails details) {
    setTitle(std::move(details.name));
    setDescription(std::move(details.description));
    change(content.help, std::move(details.help));
    setChildCount(details.childCount);
}

void AtspiNode::setTitle(std::string title) {
    change(content.title, readableText(std::move(title)));
}

void AtspiNode::setDescription(std::string description) {
    change(content.description, std::move(description));
}

void AtspiNode::setChildCount(std::int32_t count) {
    childCount = count;
    hasDetails = true;
}

void AtspiNode::setStates(const States& states) {
    isShowing = states.showing;
    isSelected = states.selected;
    isVisible = states.visible;
    managesDescendants = states.managesDescendants;
    hasState = true;
    if (isShowing)
        setShown(true);
}

void AtspiNode::setAddress(std::string address) {
    change(content.url, std::move(address));
}

void AtspiNode::setText(std::string text) {
    change(content.value, readableText(std::move(text)));
    hasText = true;
}

void AtspiNode::setShown(bool shown) {
    if (std::exchange(isShown, shown) != shown)
        markChanged();
}

void AtspiNode::markRead() {
    if (!std::exchange(wasRead, true))
        markChanged();
}

void AtspiNode::change(std::string& field, std::string value) {
    if (field == value)
        return;
    field = std::move(value);
    markChanged();
}

void AtspiNode::markChanged() {
    for (auto* node = this; node != nullptr; node = node->parent)
        node->published.reset();
}

void AtspiNode::moveTo(std::uint32_t index) {
    auto path = parent->position;
    path.push_back(index);
    if (position == path)
        return;
    position = std::move(path);
    for (std::uint32_t i = 0; i < children.size(); ++i)
        children[i]->moveTo(i);
}

std::string joinedTexts(const AccessibleElement& element) {
    std::string joined;
    int parts = 0;
    for (const auto& child : element.children) {
        if (child->role != AccessibilityRole::staticText)
            continue;
        joined += child->title;
        parts += child->title.find_first_not_of(' ') != std::string::npos ? 1 : 0;
    }
    return parts > 1 ? joined : std::string();
}

std::string readableText(std::string text) {
    constexpr std::string_view object = "\uFFFC";
    constexpr std::array<std::string_view, 3> bullets{"\u2022 ", "\u25E6 ", "\u25AA "};
    for (auto at = text.find(object); at != std::string::npos; at = text.find(object, at))
        text.erase(at, object.size());
    for (const auto bullet : bullets)
        if (text.starts_with(bullet))
            return text.substr(bullet.size());
    return text;
}

} // namespace quorva
