#include "platform/linux/accessibility/AtspiReadTree.h"

#include <algorithm>
#include <utility>

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

AtspiReadTree::AtspiReadTree(AtspiCalls& calls, AtspiApplicationTraits& traits_,
                             AtspiReference root)
    : tree(traits_, std::move(root)),
      reader(calls, traits_, tree),
      traits(traits_),
      lastInvalidated(g_get_monotonic_time()) {}

void AtspiReadTree::refresh() {
    const auto now = g_get_monotonic_time();
    if (now - lastInvalidated < maxAge)
        return;
    tree.invalidate();
    lastInvalidated = now;
}

void AtspiReadTree::expire() {
    lastInvalidated = g_get_monotonic_time() - maxAge;
}

/// Firefox has no texts for the first client that asks for them, and does not signal when it has.
/// They are asked for again, until it turns out that there are none.
bool AtspiReadTree::awaitsTexts(const AccessibleElement& read) {
    if (traits.toolkit != AtspiToolkit::gecko || textRetries == 0)
        return false;
    --textRetries;
    if (textRetries == 0 || !lacksTexts(read)) {
        textRetries = 0;
        return false;
    }
    expire();
    return true;
}

} // namespace quorva
