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

void AtspiNode::forget() {
    hasRole = hasState = hasText = false;
    forgetChildren();
}

void AtspiNode::forgetChildren() {
    hasDetails = hasChildren = false; // the number of children is one of the details
    listed.clear();
    nextChild = 0;
}

void AtspiNode::change(std::string& field, std::string value) {
    if (field == value)
        return;
    field = std::move(value);
    hasChanged();
}

void AtspiNode::hasChanged() {
    for (auto* node = this; node != nullptr; node = node->parent)
        node->published.reset();
}

void AtspiNode::place(std::uint32_t index) {
    auto there = parent->position;
    there.push_back(index);
    if (position == there)
        return;
    position = std::move(there);
    for (std::uint32_t i = 0; i < children.size(); ++i)
        children[i]->place(i);
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
