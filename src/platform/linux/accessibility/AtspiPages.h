// The pages of a browser's windows: each document that belongs to no other one, in front or not.
// Follows where they are, reads those that a plan wants, and keeps those that have gone into the
// background for as long as they answer.
// Belongs to the thread that made it.
#pragma once

#include "base/Lifetime.h"
#include "base/Subscription.h"
#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiReadTree.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace quorva {

class AtspiPages {
public:
    /// Both must outlive the object.
    AtspiPages(AtspiCalls& calls, AtspiApplicationTraits& traits);
    ~AtspiPages();

    AtspiPages(const AtspiPages&) = delete;
    AtspiPages& operator=(const AtspiPages&) = delete;

    /// The pages that a window lists at the moment.
    struct Listed {
        AtspiReference window;
        std::vector<const AtspiNode*> pages;
    };

    /// Takes over which pages there are. A page that is listed no longer has gone, or is kept by
    /// the application where it cannot be reached from a window.
    void update(const std::vector<Listed>& listed, const ReadingPlan& plan);

    /// Whether any page is to be read.
    [[nodiscard]] bool isAnyWanted() const;

    /// Brings the wanted pages up to date. If `polls`, also looks for what is not signalled, and
    /// has them come up to date by themselves first. Calls `done` once, possibly within this call.
    void read(bool polls, const Task& done);

    /// Whether a page has been asked to come up to date, and is to be read soon.
    [[nodiscard]] bool isAnyRousing() const;

    /// Whether one of those shows no address yet, which only its window tells.
    [[nodiscard]] bool isAnyBlank() const;

    /// Invalidates what a signal reports as changed. Returns whether that is part of any page.
    bool invalidate(const AtspiEvent& event);

    /// Makes the next reading read everything anew.
    void expire();

    /// The pages of a window. Those of windows that have gone are among those of the first window.
    /// Asks for another reading by setting `isAgain` where texts may be missing.
    [[nodiscard]] std::vector<AccessiblePage> of(const AtspiReference& window, bool isFirstWindow,
                                                 bool& isAgain);

private:
    struct Page;

    [[nodiscard]] Page& pageOf(const AtspiReference& reference);
    void readNext(std::size_t index, bool polls, const Task& done);
    void rousePage(Page& page, Task next);
    static void readContent(Page& page, Task next);
    [[nodiscard]] static AccessiblePage publish(Page& page, bool& isAgain);

    AtspiCalls& calls;
    AtspiApplicationTraits& traits;
    std::vector<std::unique_ptr<Page>> pages;
    std::vector<AtspiReference> windows; ///< that are there
    Lifetime lifetime;
};

} // namespace quorva
