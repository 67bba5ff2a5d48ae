// One application on the accessibility bus. Asks it to expose its trees, reads those of its windows
// that a plan wants, follows their changes, and leaves it alone for a while when it does not
// answer. Belongs to the thread, and to the thread-default main context, that made it.
#pragma once

#include "base/Lifetime.h"
#include "base/Subscription.h"
#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiConnection.h"
#include "platform/linux/accessibility/AtspiEvents.h"
#include "platform/linux/accessibility/AtspiTree.h"
#include "platform/linux/glib/Handles.h"

#include <cstddef>
#include <memory>
#include <string>

namespace quorva {

struct AtspiWindow;

/// The accessibility bus as applications are read over it. What it refers to must outlive them.
struct AtspiBus {
    GDBusConnection* main; ///< for single calls
    AtspiConnection& bulk; ///< for elements
    AtspiEvents& events;
};

class AtspiApplication {
public:
    /// `name` is the application's own on the bus. `onRead` is called after each reading, failed
    /// ones included.
    AtspiApplication(const AtspiBus& bus, std::string name, Task onRead);
    ~AtspiApplication();

    AtspiApplication(const AtspiApplication&) = delete;
    AtspiApplication& operator=(const AtspiApplication&) = delete;

    /// Sets the plan, and whether to ask for the whole tree; begins a reading of what is not known.
    /// During a reading, another one is begun after it. Does not begin one that is scheduled
    /// already any sooner, nor one of an unresponsive application.
    void read(std::shared_ptr<const ReadingPlan> plan, bool enables);

    /// The windows as they were last read completely; `couldNotBeRead` while it is unresponsive.
    [[nodiscard]] const AccessibleWindows& windows() const { return published; }

    /// As AccessibilityTree::enable.
    [[nodiscard]] int enableResult() const { return enabled; }

private:
    /// Each state but the first has a timer, or a call, that ends it.
    enum class State {
        idle,
        scheduled, ///< a reading begins soon
        reading,
        readingAgain, ///< a reading is under way, and another one follows
        unresponsive,
    };
    struct Contact;

    void enter(State next, GSourcePtr ending = nullptr);
    [[nodiscard]] bool isReading() const;
    void schedule(guint soonest);
    void begin();
    void askToolkit();
    void askToExpose();
    void readWindowList();
    void handleWindowList();
    void readWindow(std::size_t index);
    void readOutline(std::size_t index);
    void readWhole(std::size_t index, const TreeExtent& extent);
    void readPages();
    void followChanges(Task next);
    void connectPeer(Task next);
    void handleLostPeer();
    void finish();
    [[nodiscard]] AccessibleWindow publish(const AtspiWindow& window, bool isFirst, bool& isAgain);
    [[nodiscard]] bool awaitsPages();
    [[nodiscard]] bool isAnyFollowed() const;
    void handleHang();
    void giveUp(std::string problem);
    void giveUpForAWhile(std::string problem);
    void probe();
    void handleEvent(const AtspiEvent& event);
    void apply(const AtspiEvent& event);

    const AtspiBus bus;
    const AtspiReference root;
    const Task onRead;

    std::shared_ptr<const ReadingPlan> plan;
    bool enables = false;
    int enabled;

    State state = State::idle;
    GSourcePtr timer; ///< of the state
    AtspiApplicationTraits traits;
    int pageRetries = 4;       ///< soon after it was first asked to expose them
    bool hasTriedPeer = false; ///< once is enough while it answers
    bool isPollDue = true;     ///< of what is not signalled: windows, pages and tabs
    std::unique_ptr<Contact> contact;
    gint64 begun = 0;    ///< of the last reading
    gint64 duration = 0; ///< of the last completed one
    AccessibleWindows published;
    Lifetime lifetime;
};

} // namespace quorva
