// What the windows of other programs show to a screen reader: titles, and the trees of elements
// within them; of browsers, every page by itself, in front or not. Reading them takes those
// programs' time and can take long, so it is done in the background: callers say what to read, and
// look at the newest complete snapshot of it.
#pragma once

#include "base/Subscription.h"
#include "platform/ProcessTable.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// The kind of an element, as far as it matters for finding texts.
enum class AccessibilityRole {
    unreadable, ///< it did not answer
    other,      ///< any role that is not listed here
    button,
    colorWell,
    group,
    image,
    list,
    liveRegion, ///< what tells of changes: a status, an alert
    log,        ///< of messages, such as a chat
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
    tab,
    table,
    toolbar,
    webArea,
    window,
};

struct AccessibleElement;
using AccessibleElementPtr = std::shared_ptr<const AccessibleElement>;

/// One element as it was when it was read. Texts are UTF-8; empty when the element has none. It
/// never changes: a later snapshot shares the elements that are still the same with the one before.
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

/// Whether something could be read. "Read, and nothing is there" is `read`.
enum class ReadState {
    notReadYet,     ///< not requested before, or being read
    couldNotBeRead, ///< it did not answer as it should
    read,
};

/// How much of a window's tree is read. A walk starts at the window (depth 0) and visits children in
/// their order before siblings. In a tree with more elements than its budget it meets those that
/// `WalkBudget` chooses. The elements it meets are read.
struct TreeExtent {
    int maxDepth = 0;    ///< elements at this depth and below are left out
    int maxElements = 0; ///< the walk meets that many
    /// Whether the walk goes from an element at `depth` into a child; null for always. A function
    /// without state, because it is called on the reader's thread.
    bool (*descends)(AccessibilityRole parent, AccessibilityRole child, int depth) = nullptr;

    bool operator==(const TreeExtent&) const = default;
};

/// A page of a window: a document that is not part of another one. A window has several when it has
/// tabs, or shows two side by side.
struct AccessiblePage {
    std::string title;
    std::string url;      ///< of its document; empty when it does not say
    bool isShown = false; ///< false: certainly not in front. True may be wrong where it is covered
    ReadState state = ReadState::notReadYet; ///< of the tree
    std::string problem;                     ///< why it could not be read, in English
    TreeExtent extent;                       ///< how much of it was read; nothing if not wanted
    AccessibleElementPtr tree; ///< null unless wanted and read; begins at the document
};

/// A tab of a window, as the window names it: the title of its page, often with more behind it.
struct AccessibleTab {
    std::string title;
    bool isSelected = false;
};

/// A window of an application.
struct AccessibleWindow {
    std::string title;
    ReadState state = ReadState::notReadYet; ///< of the tree, or of the list of pages and tabs
    std::string problem;                     ///< why it could not be read, in English
    TreeExtent extent;                       ///< how much of the tree was read
    AccessibleElementPtr tree; ///< null unless wanted and read; without pages that are not in front
    /// Of a browser; each page as it was last read. A page in the background may be missing.
    std::vector<AccessiblePage> pages;
    std::vector<AccessibleTab> tabs; ///< of a browser
};

/// The windows of an application, in its own order.
struct AccessibleWindows {
    ReadState state = ReadState::notReadYet; ///< of the list of windows with their titles
    std::string problem;
    std::vector<AccessibleWindow> windows;
    /// The number of further instances of the application that run and show nothing, and of those
    /// that may be about to.
    int silentInstances = 0;
    int startingInstances = 0;
};

/// Decides what to read of an application, to read as little as possible. The functions are without
/// state and called on the reader's thread; an extent of no elements reads nothing.
struct ReadingPlan {
    /// How much is read of a window with this title.
    std::function<TreeExtent(std::string_view title)> window;
    /// How far pages and tabs are looked for in windows. No elements: the application is no
    /// browser. Otherwise `window` is not asked, and `page` says how much is read of a page.
    TreeExtent outline;
    std::function<TreeExtent(std::string_view title, std::string_view url)> page;
};

/// An application whose windows are to be read.
struct ReadingRequest {
    ProcessIdentifier process = 0; ///< its main process
    std::shared_ptr<const ReadingPlan> plan;
};

/// The switch of an application that exposes its tree only when asked to.
enum class AccessibilitySwitch { manualAccessibility, enhancedUserInterface };

/// Main thread only; no operation waits for another program.
class AccessibilityTree {
public:
    virtual ~AccessibilityTree() = default;

    /// Whether this program may read what applications show, which is when the session's
    /// accessibility is switched on.
    [[nodiscard]] virtual bool isTrusted() const = 0;

    /// Calls `callback` on the main loop after `isTrusted` has changed.
    [[nodiscard]] virtual Subscription onTrustChange(Task callback) = 0;

    /// Switches the session's accessibility on, as the user wishes. Calls `done` once, on the main
    /// loop or within this call, with whether it is on now.
    virtual void requestTrust(std::function<void(bool isTrusted)> done) = 0;

    /// Asks an application to expose its whole tree, with the next request that names it. Returns 0
    /// when it has been asked, now or before; otherwise an errno number: EINPROGRESS until it has
    /// been asked, ESRCH when it exposes nothing, ENOTSUP when it refuses, ETIMEDOUT when it does
    /// not answer, ECONNREFUSED when no application can be reached.
    virtual int enable(ProcessIdentifier process, AccessibilitySwitch which) = 0;

    /// The windows of an application, as they were last read completely; `notReadYet` for one that
    /// has not been requested. `couldNotBeRead` when it shows nothing or does not answer.
    [[nodiscard]] virtual AccessibleWindows windows(ProcessIdentifier process) const = 0;

    /// Sets what is read from now on, until the next call. Reads what has not been read yet, or has
    /// changed, and drops what is known of applications that are not named any more.
    virtual void request(std::vector<ReadingRequest> requests) = 0;

    /// Calls `callback` on the main loop, never within a call to this object, after a reading of an
    /// application's windows has succeeded or failed.
    [[nodiscard]] virtual Subscription onRead(Task callback) = 0;
};

} // namespace quorva
