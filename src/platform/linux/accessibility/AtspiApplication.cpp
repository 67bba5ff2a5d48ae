#include "platform/linux/accessibility/AtspiApplication.h"

#include "platform/linux/accessibility/AtspiCalls.h"
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
constexpr gint64 restAfterReading = 3; // times as long as it took
constexpr std::size_t maxChanges = 10'000;

} // namespace

/// What is held of an application that answers. Dropping it cancels the reading under way.
struct AtspiApplication::Contact {
    Contact(AtspiConnection& bulk, AtspiApplicationTraits& traits, const AtspiReference& root,
            Task onHang)
        : calls(bulk, std::move(onHang)), list(calls, traits, root) {
        list.tree.setScope(windowList, AtspiTree::Texts::none);
    }

    std::unique_ptr<AtspiConnection> peer; ///< to its own socket, if it has one
    AtspiCalls calls;
    AtspiReadTree list; ///< the application and its windows, not what is below
    std::vector<std::unique_ptr<AtspiWindow>> windows;
    std::set<std::pair<std::string, AtspiChange>> signalled; ///< since the last reading began
    Subscription changes;                                    ///< while a window is watched
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
    if (isReading())
        state = State::readingAgain;
    else if (state == State::idle)
        begin();
}

/// Changes come in swarms: those of a second are read together. An application that takes long to
/// be read is left alone for longer.
void AtspiApplication::schedule() {
    if (state != State::idle)
        return;
    const auto rest = static_cast<guint>(restAfterReading * duration / 1000);
    enter(State::scheduled, contextTimer(std::max(timeForMoreChanges, rest), [this] { begin(); }));
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
    else
        askToExpose();
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
        const auto& present = reference;
        const auto known = std::find_if(former.begin(), former.end(), [&](const auto& window) {
            return window && window->reference == present;
        });
        contact->windows.push_back(
            known != former.end() ? std::move(*known) : std::make_unique<AtspiWindow>(reference));
        contact->windows.back()->title = std::move(title);
    }
    readWindow(0);
}

void AtspiApplication::readWindow(std::size_t index) {
    if (index == contact->windows.size())
        return finish();
    auto& window = *contact->windows[index];
    const auto first = plan->byTitle(window.title);
    if (first.extent.maxElements == 0) {
        window.content.reset();
        return readWindow(index + 1);
    }
    window.prepare(contact->calls, traits, first.extent);
    window.isOutlined = !first.isFinal;
    if (first.isFinal)
        readWhole(index, first.extent);
    else
        readOutline(index, first.extent);
}

/// Reads as much as was read before. Where its documents are not shown any more, others may be:
/// those of another tab, or new ones in their place.
void AtspiApplication::readOutline(std::size_t index, const TreeExtent& outline) {
    auto& content = *contact->windows[index]->content;
    const auto next = lifetime.guard([this, index, outline] { decide(index, outline); });
    content.tree.invalidatePathsToDocuments();
    content.reader.read(lifetime.guard([this, index, next] {
        auto& [tree, reader] = *contact->windows[index]->content;
        if (tree.showsDocument() && tree.hasDocument())
            return next();
        if (tree.hasDocument())
            tree.invalidateDocuments();
        else
            tree.invalidate();
        reader.read(next);
    }));
}

void AtspiApplication::decide(std::size_t index, const TreeExtent& outline) {
    auto& window = *contact->windows[index];
    auto& [tree, reader] = *window.content;
    const auto extent = plan->byTree(window.title, *tree.snapshot());
    if (extent.maxElements > 0)
        return readWhole(index, extent);
    if (!window.isWatched())
        return readWindow(index + 1);
    tree.setScope(outline, AtspiTree::Texts::none);
    reader.read(lifetime.guard([this, index] { readWindow(index + 1); }));
}

/// Changes are followed from before the reading, so that none is missed in between.
void AtspiApplication::readWhole(std::size_t index, const TreeExtent& extent) {
    const auto start = lifetime.guard([this, index, extent] {
        auto& [tree, reader] = *contact->windows[index]->content;
        tree.setScope(extent, AtspiTree::Texts::all);
        reader.read(lifetime.guard([this, index] { readWindow(index + 1); }));
    });
    if (contact->changes)
        return start();
    const auto follow = lifetime.guard([this, start] {
        contact->changes = bus.events.follow(
            root.bus, lifetime.guard([this](const AtspiEvent& event) { handleEvent(event); }),
            start);
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
    const auto& windows = contact->windows;
    const bool isExposing = awaitsDocuments();
    bool isAgain = state == State::readingAgain || isExposing;
    for (const auto& window : windows) {
        auto shown = publish(*window, isExposing);
        if (shown.tree && window->awaitsTexts(traits.toolkit, *shown.tree)) {
            shown.state = ReadState::notReadYet;
            shown.tree = nullptr;
            isAgain = true;
        }
        if (shown.tree && shown.tree->role == AccessibilityRole::unreadable) {
            shown.state = ReadState::couldNotBeRead;
            shown.problem = "it does not answer as a window should";
            shown.tree = nullptr;
            window->content.reset();
        }
        published.windows.push_back(std::move(shown));
    }
    if (std::none_of(windows.begin(), windows.end(),
                     [](const auto& window) { return window->isWatched(); }))
        contact->changes.reset();
    enter(State::idle);
    duration = g_get_monotonic_time() - begun;
    for (const auto& [path, change] : contact->signalled)
        apply({path, change});
    if (isAgain)
        schedule();
    onRead();
}

AccessibleWindow AtspiApplication::publish(const AtspiWindow& window, bool isExposing) {
    AccessibleWindow shown;
    shown.title = window.title;
    if (window.content && !(isExposing && window.isOutlined)) {
        shown.state = ReadState::read;
        shown.extent = window.content->tree.extent();
        shown.tree = window.content->tree.snapshot();
    }
    return shown;
}

/// Whether the application may be about to show the documents that it was lately asked for. It
/// shows those of all its windows or none.
bool AtspiApplication::awaitsDocuments() {
    const auto& windows = contact->windows;
    const bool wantsDocuments = std::any_of(windows.begin(), windows.end(),
                                            [](const auto& window) { return window->isOutlined; });
    const bool hasDocuments = std::any_of(windows.begin(), windows.end(), [](const auto& window) {
        return window->content && window->content->tree.hasDocument();
    });
    if (!enables || !wantsDocuments || hasDocuments || documentRetries == 0)
        return false;
    --documentRetries;
    return true;
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
            window->expire();
        return;
    }
    if (signalled.size() == maxChanges)
        signalled.clear();
    if (signalled.emplace(event.path, event.change).second && !isReading())
        apply(event);
}

void AtspiApplication::apply(const AtspiEvent& event) {
    bool matters = event.change == AtspiChange::windows || event.change == AtspiChange::document ||
                   contact->list.tree.invalidate(event);
    for (const auto& window : contact->windows)
        matters = (window->isWatched() && window->content->tree.invalidate(event)) || matters;
    if (matters)
        schedule();
}

} // namespace quorva
