// What other programs' windows show to a screen reader: titles, and the trees of elements within
// them. Reading takes the other programs' time and may take long, so it is done elsewhere: whoever
// looks says what shall be read, and looks at the newest complete snapshot of it.
#pragma once

#include "base/Subscription.h"
#include "platform/ProcessTable.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// What an element is, as far as that matters for looking for texts.
enum class AccessibilityRole {
    unreadable, ///< it did not say
    other,      ///< any role that is not listed here
    button,
    colorWell,
    group,
    image,
    list,
    menuBar,
    outline,
    ruler,
    scrollArea,
    scrollBar,
    slider,
    splitGroup,
    splitter,
    staticText,
    tabGroup,
    table,
    toolbar,
    webArea,
    window,
};

struct AccessibleElement;
using AccessibleElementPtr = std::shared_ptr<const AccessibleElement>;

/// One element as it was when it was read. Texts are UTF-8; empty when the element has none. Never
/// changes: a later snapshot shares the elements that are still the same with the one before.
struct AccessibleElement {
    AccessibilityRole role = AccessibilityRole::unreadable;
    std::string value; ///< what an entry holds, or what a paragraph says; never a password
    std::string title;
    std::string description;
    std::string help;
    std::string roleDescription; ///< the role in the user's language
    std::string url;             ///< of a web area: the address of its document
    std::vector<AccessibleElementPtr> children;
};

/// Whether something could be looked at. "Nothing there" is `read`.
enum class ReadState {
    notReadYet,     ///< not asked for before, or being read
    couldNotBeRead, ///< it did not answer as it should
    read,
};

/// How much of a window's tree is read: the elements that a walk meets which starts at the window
/// (depth 0), takes children in their order before siblings, and ends where the budget does.
struct TreeExtent {
    int maxDepth = 0;    ///< elements at this depth and below are left out
    int maxElements = 0; ///< the walk ends after that many
    /// Whether the walk goes from an element at `depth` into a child. A function without state, for
    /// it is called on the reader's thread.
    bool (*descends)(AccessibilityRole parent, AccessibilityRole child, int depth) = nullptr;

    bool operator==(const TreeExtent&) const = default;
};

/// A window of an application. Documents of tabs that are not shown are no part of it.
struct AccessibleWindow {
    std::string title;
    ReadState state = ReadState::notReadYet; ///< of the tree
    std::string problem;                     ///< why it could not be read; for the log and people
    TreeExtent extent;                       ///< how much of it was read
    AccessibleElementPtr tree;               ///< null unless read; then the newest complete reading
};

/// The windows of an application, in its own order.
struct AccessibleWindows {
    ReadState state = ReadState::notReadYet; ///< of the list of windows with their titles
    std::string problem;
    std::vector<AccessibleWindow> windows;
};

/// What shall be read of a window, decided step by step so that as little is read as possible.
/// Functions without state, called on the reader's thread; an extent with no elements is none.
struct ReadingPlan {
    /// By the title. With `isFinal` unset, the tree read to this extent is shown to `byTree`.
    struct First {
        TreeExtent extent;
        bool isFinal = true;
    };
    std::function<First(std::string_view title)> byTitle;
    std::function<TreeExtent(std::string_view title, const AccessibleElement& tree)> byTree;
};

/// An application whose windows shall be read.
struct ReadingRequest {
    ProcessIdentifier process = 0; ///< its main process
    std::shared_ptr<const ReadingPlan> plan;
};

/// What switches an application's tree on where it is off until somebody asks.
enum class AccessibilitySwitch { manualAccessibility, enhancedUserInterface };

/// Main thread only; no operation waits for another program.
class AccessibilityTree {
public:
    virtual ~AccessibilityTree() = default;

    /// Whether this program may read what applications show: the session's accessibility is
    /// switched on.
    [[nodiscard]] virtual bool isTrusted() const = 0;

    /// Calls `callback` on the main loop after that has changed.
    [[nodiscard]] virtual Subscription onTrustChange(Task callback) = 0;

    /// Switches the session's accessibility on, at the user's wish, and calls `done` once, on the
    /// main loop or within this call, with whether it is on then.
    virtual void requestTrust(std::function<void(bool isTrusted)> done) = 0;

    /// Asks an application to expose its whole tree. 0 when it has been asked, now or before; else
    /// why not, as a number of errno: EINPROGRESS while that is being found out, ESRCH when it
    /// exposes nothing, ETIMEDOUT when it does not answer.
    virtual int enable(ProcessIdentifier process, AccessibilitySwitch which) = 0;

    /// The windows of an application, as they were last read completely.
    [[nodiscard]] virtual AccessibleWindows windows(ProcessIdentifier process) const = 0;

    /// Says what shall be read from now on, until the next call; reading starts, or goes on with
    /// what has changed. What is not named any more is forgotten.
    virtual void request(std::vector<ReadingRequest> requests) = 0;

    /// Calls `callback` on the main loop after an application's windows have been read, or could
    /// not be.
    [[nodiscard]] virtual Subscription onRead(Task callback) = 0;
};

} // namespace quorva
