#include "platform/linux/accessibility/AtspiApplication.h"

#include "platform/linux/accessibility/AtspiCalls.h"
#include "platform/linux/accessibility/AtspiPages.h"
#include "platform/linux/accessibility/AtspiReadTree.h"
#include "platform/linux/accessibility/AtspiRousing.h"
#include "platform/linux/accessibility/AtspiWindow.h"
#include "platform/linux/glib/BusCall.h"
#include "platform/linux/glib/MainContext.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <utility>
#include <vector>

namespace quorva {
namespace {

/// The application and its windows. More windows than this are a fault of the application.
constexpr TreeExtent windowList{.maxDepth = 2, .maxElements = 257, .descends = nullptr};

constexpr guint readingTimeout = 20'000; // milliseconds
constexpr guint pauseAfterFailure = 30'000;
constexpr int probeTimeout = 30'000;
constexpr guint timeForMoreChanges = 1000;
constexpr guint pauseAfterRousing = timeToComeUpToDate + 50;
constexpr gint64 restAfterReading = 3; // times as long as it took
constexpr std::size_t maxChanges = 10'000;

} // namespace

/// What is held of an application that answers. Dropping it cancels the reading under way.
struct AtspiApplication::Contact {
    Contact(AtspiConnection& bulk, AtspiApplicationTraits& traits, const AtspiReference& root,
            Task onHang)
        : calls(bulk, std::move(onHang)), list(calls, traits, root), pages(calls, traits) {
        list.tree.setScope(windowList, AtspiTree::Texts::none);
    }

    std::unique_ptr<AtspiConnection> peer; ///< to its own socket, if it has one
    AtspiCalls calls;
    AtspiReadTree list; ///< the application and its windows, not what is below
    std::vector<AtspiWindow> windows;
    AtspiPages pages;                                        ///< of a browser
    std::set<std::pair<std::string, AtspiChange>> signalled; ///< since the last reading began
    Subscription changes; ///< while a window or a page is watched
};

AtspiApplication::AtspiApplication(const AtspiBus& bus_, std::string name, Task onRead_)
    : bus(bus_),
      root{std::move(name), atspi::rootPath},
      onRead(std::move(onRead_)),
      enabled(EINPROGRESS) {}

AtspiApplication::~AtspiApplication() = default;

void AtspiApplication::enter(State next, GSourcePtr ending) {
    state = next;
    timer = std::move(ending);
}

bool AtspiApplication::isReading() const {
    return state == State::reading || state == State::readingAgain;
}

void AtspiApplication::read(std::shared_ptr<const ReadingPlan> plan_, bool enables_) {
    plan = std::move(plan_);
    enables = enables_;
    isPollDue = true;
    if (isReading())
        state = State::readingAgain;
    else if (state == State::idle)
        begin();
}

/// Changes come in swarms: those of a second are read together. An application that takes long to
/// be read is left alone for longer.
void AtspiApplication::schedule(guint soonest) {
    if (state != State::idle)
        return;
    const auto rest = static_cast<guint>(restAfterReading * duration / 1000);
    enter(State::scheduled, contextTimer(std::max(soonest, rest), [this] { begin(); }));
}

void AtspiApplication::begin() {
    begun = g_get_monotonic_time();
    if (!contact)
        contact = std::make_unique<Contact>(bus.bulk, traits, root,
                                            lifetime.guard([this] { handleHang(); }));
    contact->signalled.clear();
    enter(State::reading,
          contextTimer(readingTimeout, [this] { giveUpForAWhile("it answers too slowly"); }));
    if (traits.toolkit == AtspiToolkit::notAsked)
        askToolkit();
    else if (std::exchange(isPollDue, false) || !contact->pages.isAnyWanted())
        askToExpose();
    else
        contact->pages.read(false, lifetime.guard([this] { finish(); }));
}

void AtspiApplication::askToolkit() {
    contact->calls.get(root, atspi::application, "ToolkitName",
                       lifetime.guard([this](GVariant* reply) {
                           traits.toolkit = toolkitOf(decodeTextProperty(reply).value_or(""));
                           askToExpose();
                       }));
}

/// Chromium and what is built on it show no document until a client has asked for attributes, and
/// may stop when none has for a while.
void AtspiApplication::askToExpose() {
    if (!enables)
        return readWindowList();
    contact->calls.send({root, atspi::accessible, "GetAttributes"},
                        lifetime.guard([this](GVariant* reply) {
                            enabled = reply != nullptr ? 0 : ENOTSUP;
                            readWindowList();
                        }));
}

void AtspiApplication::readWindowList() {
    contact->list.tree.invalidate();
    contact->list.reader.read(lifetime.guard([this] { handleWindowList(); }));
}

void AtspiApplication::handleWindowList() {
    if (contact->list.tree.snapshot()->role == AccessibilityRole::unreadable)
        return giveUpForAWhile("it does not answer as an application should");
    auto former = std::exchange(contact->windows, {});
    for (auto& [reference, title] : contact->list.tree.children()) {
        const auto known =
            std::find_if(former.begin(), former.end(), [&present = reference](const auto& window) {
                return window.reference == present;
            });
        contact->windows.push_back({reference, std::move(title),
                                    known != former.end() ? std::move(known->content) : nullptr,
                                    known != former.end() && known->wasRoused});
    }
    readWindow(0);
}

void AtspiApplication::readWindow(std::size_t index) {
    if (index == contact->windows.size())
        return readPages();
    auto& window = contact->windows[index];
    const bool isBrowser = plan->outline.maxElements > 0;
    const auto extent = isBrowser ? plan->outline : plan->window(window.title);
    if (extent.maxElements == 0) {
        window.content.reset();
        return readWindow(index + 1);
    }
    if (!window.content)
        window.content = std::make_unique<AtspiReadTree>(contact->calls, traits, window.reference);
    window.content->refresh();
    if (isBrowser)
        readOutline(index);
    else
        readWhole(index, extent);
}

/// Reads as much as was read before. Where pages are not there any more, others may be.
void AtspiApplication::readOutline(std::size_t index) {
    auto& content = *contact->windows[index].content;
    const auto next = lifetime.guard([this, index] { readWindow(index + 1); });
    content.tree.setScope(plan->outline, AtspiTree::Texts::none);
    content.tree.invalidatePagesAndTabs();
    content.reader.read(lifetime.guard([&content, next] {
        if (!content.tree.pages().empty())
            return next();
        content.tree.invalidate();
        content.reader.read(next);
    }));
}

void AtspiApplication::readWhole(std::size_t index, const TreeExtent& extent) {
    followChanges(lifetime.guard([this, index, extent] {
        auto& window = contact->windows[index];
        if (window.wasRoused)
            window.rouse(contact->calls);
        window.content->tree.setScope(extent, AtspiTree::Texts::all);
        window.content->reader.read(lifetime.guard([this, index] { readWindow(index + 1); }));
    }));
}

void AtspiApplication::readPages() {
    std::vector<AtspiPages::Listed> listed;
    if (plan->outline.maxElements > 0)
        for (const auto& window : contact->windows)
            listed.push_back({window.reference, window.content->tree.pages()});
    contact->pages.update(listed, *plan);
    if (!contact->pages.isAnyWanted())
        return finish();
    followChanges(lifetime.guard(
        [this] { contact->pages.read(true, lifetime.guard([this] { finish(); })); }));
}

/// Changes are followed from before the reading, so that none is missed in between.
void AtspiApplication::followChanges(Task next) {
    if (contact->changes)
        return next();
    const auto follow = lifetime.guard([this, next = std::move(next)] {
        contact->changes = bus.events.follow(
            root.bus, lifetime.guard([this](const AtspiEvent& event) { handleEvent(event); }),
            next);
    });
    if (hasTriedPeer)
        follow();
    else
        connectPeer(follow);
}

/// Many calls are going to follow. The application's own socket, where there is one that can be
/// reached, spares the bus the work.
void AtspiApplication::connectPeer(Task next) {
    hasTriedPeer = true;
    contact->calls.send({root, atspi::application, "GetApplicationBusAddress"},
                        lifetime.guard([this, next = std::move(next)](GVariant* reply) {
                            auto& peer = contact->peer;
                            const auto address = decodeText(reply).value_or("");
                            if (!address.empty())
                                peer = std::make_unique<AtspiConnection>(
                                    address, AtspiConnection::Kind::peer,
                                    lifetime.guard([this] { handleLostPeer(); }));
                            if (peer && peer->bus() == nullptr)
                                peer.reset();
                            if (peer)
                                contact->calls.use(*peer, root.bus);
                            next();
                        }));
}

/// What was asked over the socket stays unanswered, and is asked again over the bus.
void AtspiApplication::handleLostPeer() {
    contact.reset();
    begin();
}

void AtspiApplication::finish() {
    published = {.state = ReadState::read, .problem = {}, .windows = {}};
    const bool isExposing = awaitsPages();
    bool isAgain = state == State::readingAgain || isExposing;
    bool isRousing = contact->pages.isAnyRousing();
    for (auto& window : contact->windows) {
        const bool isFirst = &window == &contact->windows.front();
        const bool isStale = window.isStale(traits.toolkit);
        if (isStale)
            window.rouse(contact->calls);
        isRousing = isRousing || isStale;
        published.windows.push_back(isExposing || isStale ? AccessibleWindow{.title = window.title}
                                                          : publish(window, isFirst, isAgain));
    }
    if (!isAnyFollowed())
        contact->changes.reset();
    enter(State::idle);
    duration = g_get_monotonic_time() - begun;
    for (const auto& [path, change] : contact->signalled)
        apply({path, change});
    isPollDue = isPollDue || isExposing || contact->pages.isAnyBlank();
    if (isRousing)
        schedule(pauseAfterRousing);
    else if (isAgain)
        schedule(timeForMoreChanges);
    onRead();
}

/// `isAgain` is set if another reading may show more.
AccessibleWindow AtspiApplication::publish(const AtspiWindow& window, bool isFirst, bool& isAgain) {
    AccessibleWindow shown{.title = window.title};
    if (!window.content)
        return shown;
    if (window.content->tree.snapshot()->role == AccessibilityRole::unreadable) {
        shown.state = ReadState::couldNotBeRead;
        shown.problem = "it does not answer as a window should";
        window.content->tree.invalidate();
        return shown;
    }
    if (plan->outline.maxElements == 0)
        return window.publish(traits.toolkit, isAgain);
    shown.state = ReadState::read;
    shown.pages = contact->pages.of(window.reference, isFirst, isAgain);
    shown.tabs = window.content->tree.tabs();
    return shown;
}

/// Whether the application may be about to show the pages that it was lately asked for. It shows
/// those of all its windows or none.
bool AtspiApplication::awaitsPages() {
    const auto& windows = contact->windows;
    const bool hasPages = std::any_of(windows.begin(), windows.end(),
                                      [](const auto& window) { return window.hasPages(); });
    const bool wantsPages = std::any_of(windows.begin(), windows.end(), [](const auto& window) {
        return window.content != nullptr;
    });
    const bool mayHavePages =
        plan->outline.maxElements > 0 || traits.toolkit == AtspiToolkit::chromium;
    if (!enables || !mayHavePages || !wantsPages || hasPages || pageRetries == 0)
        return false;
    --pageRetries;
    return true;
}

/// Whether any window or page is read whole.
bool AtspiApplication::isAnyFollowed() const {
    return contact->pages.isAnyWanted() ||
           std::any_of(contact->windows.begin(), contact->windows.end(),
                       [](const auto& window) { return window.isWhole(); });
}

/// When it does not answer over its own socket, that may be at fault and not the application.
void AtspiApplication::handleHang() {
    if (contact->peer)
        return handleLostPeer();
    giveUp("it does not answer");
    probe();
}

/// Nothing is kept: it may all be wrong by the time the application answers again.
void AtspiApplication::giveUp(std::string problem) {
    enter(State::unresponsive);
    contact.reset();
    hasTriedPeer = false;
    traits = {};
    enabled = ETIMEDOUT;
    published = {.state = ReadState::couldNotBeRead, .problem = std::move(problem), .windows = {}};
    onRead();
}

void AtspiApplication::giveUpForAWhile(std::string problem) {
    giveUp(std::move(problem));
    enter(State::unresponsive, contextTimer(pauseAfterFailure, [this] { enter(State::idle); }));
}

/// Sends one call, and reads again when that has been answered or, since an answer can be lost,
/// after its timeout.
void AtspiApplication::probe() {
    callBus(
        bus.main,
        {root.bus.c_str(), root.path.c_str(), atspi::accessible, "GetRole", nullptr, probeTimeout},
        lifetime.guard([this](GVariant*) { begin(); }));
}

/// A change counts once until it has been read.
void AtspiApplication::handleEvent(const AtspiEvent& event) {
    auto& signalled = contact->signalled;
    if (signalled.size() == maxChanges && isReading()) { // too many to follow
        state = State::readingAgain;
        for (const auto& window : contact->windows)
            if (window.content)
                window.content->expire();
        contact->pages.expire();
        isPollDue = true;
        return;
    }
    if (signalled.size() == maxChanges)
        signalled.clear();
    if (signalled.emplace(event.path, event.change).second && !isReading())
        apply(event);
}

void AtspiApplication::apply(const AtspiEvent& event) {
    bool isOfWindows = event.change == AtspiChange::windows ||
                       event.change == AtspiChange::document ||
                       contact->list.tree.invalidate(event);
    for (const auto& window : contact->windows)
        isOfWindows = (window.content && window.content->tree.invalidate(event)) || isOfWindows;
    isPollDue = isPollDue || isOfWindows;
    if (contact->pages.invalidate(event) || isOfWindows)
        schedule(timeForMoreChanges);
}

} // namespace quorva
