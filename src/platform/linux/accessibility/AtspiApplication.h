// One application on the accessibility bus: asks it to expose its trees, reads those of its windows
// that a plan wants, follows their changes, and gives up on it for a while when it does not answer.
// Belongs to the thread, and to the thread-default main context, that made it.
#pragma once

#include "base/Lifetime.h"
#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiCalls.h"
#include "platform/linux/accessibility/AtspiEvents.h"
#include "platform/linux/accessibility/AtspiTreeReader.h"
#include "platform/linux/glib/Handles.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quorva {

/// The accessibility bus as applications are read over it. What it refers to must outlive them.
struct AtspiBus {
    GDBusConnection* main; ///< for single calls
    AtspiConnection& bulk; ///< for elements
    AtspiEvents& events;
};

class AtspiApplication {
public:
    /// `name` is the application's own on the bus. `onRead` is called after each reading, the
    /// failed ones included.
    AtspiApplication(const AtspiBus& bus, std::string name, Task onRead);
    ~AtspiApplication();

    AtspiApplication(const AtspiApplication&) = delete;
    AtspiApplication& operator=(const AtspiApplication&) = delete;

    /// Reads what the plan wants, as far as it is not known. While a reading is under way, another
    /// one follows it; while the application does not answer there is none. One that is about to
    /// begin for what has changed is waited for.
    void read(std::shared_ptr<const ReadingPlan> plan, bool enables);

    /// The windows as they were last read completely; `couldNotBeRead` while it does not answer.
    [[nodiscard]] const AccessibleWindows& windows() const { return published; }

    /// As AccessibilityTree::enable.
    [[nodiscard]] int enableResult() const { return enabled; }

private:
    enum class State { ready, reading, silent };
    struct Window;

    void begin();
    void askToolkit();
    void askToExpose();
    void takeWindowList();
    void readWindow(std::size_t index);
    void readOutline(std::size_t index, const TreeExtent& outline);
    void decide(std::size_t index, const TreeExtent& outline);
    void readWhole(std::size_t index, const TreeExtent& extent);
    void connectDirectly(Task next);
    void losePeer();
    void finish();
    bool isExposing();
    bool awaitsTexts(Window& window, const AccessibleElement& tree);
    void giveUp(std::string problem);
    void endReading();
    void waitForAnswer();
    void receive(const AtspiEvent& event);
    void apply(const AtspiEvent& event);
    void readSoon();

    const AtspiBus bus;
    const AtspiReference root;
    const Task onRead;

    std::shared_ptr<const ReadingPlan> plan;
    bool enables = false;
    int enabled;

    State state = State::ready;
    bool isReadAgain = false; ///< another reading follows the one under way
    AtspiApplicationTraits traits;
    bool hasTraits = false;
    int looksForDocuments = 4; ///< soon after it was first asked to expose them
    bool hasPeer = false;      ///< the application's own socket has been tried
    std::unique_ptr<AtspiConnection> peer;
    std::unique_ptr<AtspiCalls> calls;
    std::unique_ptr<AtspiTreeReader> list; ///< the application and its windows, not what is below
    std::vector<std::unique_ptr<Window>> open;
    Subscription changes;                               ///< while a window is watched
    std::set<std::pair<std::string, AtspiChange>> told; ///< since the last reading began
    gint64 begun = 0;                                   ///< of a reading
    gint64 duration = 0;                                ///< of the last one
    GSourcePtr deadline;
    GSourcePtr soon;
    GSourcePtr silence;
    AccessibleWindows published;
    Lifetime lifetime;
};

} // namespace quorva
