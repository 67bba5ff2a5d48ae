#include "platform/linux/accessibility/AtspiWindow.h"

#include "platform/linux/accessibility/AtspiRousing.h"

namespace quorva {

bool AtspiWindow::isWhole() const {
    return content && content->tree.texts() == AtspiTree::Texts::all;
}

bool AtspiWindow::hasPages() const {
    return content && !content->tree.pages().empty();
}

bool AtspiWindow::isStale(AtspiToolkit toolkit) const {
    return toolkit == AtspiToolkit::chromium && !wasRoused && isWhole() && hasPages();
}

void AtspiWindow::rouse(AtspiCalls& calls) {
    wasRoused = true;
    for (const auto* const page : content->tree.pages())
        quorva::rouse(calls, page->reference, [](GVariant*) {});
    rouseFrames(calls, content->tree);
}

/// A program that is built on Chromium has no page in a window that was minimised when its pages
/// were first asked for.
AccessibleWindow AtspiWindow::publish(AtspiToolkit toolkit, bool& isAgain) const {
    AccessibleWindow shown{.title = title};
    const auto tree = content->tree.snapshot();
    if (content->awaitsTexts(*tree)) {
        isAgain = true;
    } else if (toolkit == AtspiToolkit::chromium && !hasPages()) {
        shown.state = ReadState::couldNotBeRead;
        shown.problem = "its window is hidden; bring it to the front once";
    } else {
        shown.state = ReadState::read;
        shown.extent = content->tree.extent();
        shown.tree = tree;
    }
    return shown;
}

} // namespace quorva
