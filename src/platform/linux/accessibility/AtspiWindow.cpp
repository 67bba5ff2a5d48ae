#include "platform/linux/accessibility/AtspiWindow.h"

#include <algorithm>

namespace quorva {
namespace {

constexpr gint64 maxAge = 55'000'000; // microseconds

/// Whether the page itself has any text, leaving aside pages within it.
bool hasTexts(const AccessibleElement& element) {
    return !element.value.empty() ||
           std::any_of(element.children.begin(), element.children.end(), [](const auto& child) {
               return child->role != AccessibilityRole::webArea && hasTexts(*child);
           });
}

/// Whether there is a page with elements but without a text.
bool lacksTexts(const AccessibleElement& element) {
    const bool isPage = element.role == AccessibilityRole::webArea && !element.children.empty();
    return (isPage && !hasTexts(element)) ||
           std::any_of(element.children.begin(), element.children.end(),
                       [](const auto& child) { return lacksTexts(*child); });
}

} // namespace

bool AtspiWindow::isWatched() const {
    return content && content->tree.texts() == AtspiTree::Texts::all;
}

void AtspiWindow::prepare(AtspiCalls& calls, AtspiApplicationTraits& traits,
                          const TreeExtent& outline) {
    const auto now = g_get_monotonic_time();
    if (!content) {
        content = std::make_unique<AtspiReadTree>(calls, traits, reference);
        content->tree.setScope(outline, AtspiTree::Texts::none);
    } else if (now - lastInvalidated >= maxAge) {
        content->tree.invalidate();
    } else {
        return;
    }
    lastInvalidated = now;
}

void AtspiWindow::expire() {
    lastInvalidated = g_get_monotonic_time() - maxAge;
}

/// Firefox has no texts for the first client that asks for them, and does not signal when it has.
/// They are asked for again, until it turns out that there are none.
bool AtspiWindow::awaitsTexts(AtspiToolkit toolkit, const AccessibleElement& tree) {
    if (toolkit != AtspiToolkit::gecko || !isWatched() || textRetries == 0)
        return false;
    --textRetries;
    if (textRetries == 0 || !lacksTexts(tree)) {
        textRetries = 0;
        return false;
    }
    expire();
    return true;
}

} // namespace quorva
