#include "platform/linux/accessibility/AtspiApplication.h"

#include "platform/linux/glib/BusCall.h"
#include "platform/linux/glib/MainContext.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace quorva {
namespace {

/// The application and its windows. More windows than this are a fault of the application.
constexpr TreeExtent windowList{.maxDepth = 2, .maxElements = 257, .descends = nullptr};

constexpr guint longestReading = 20'000; // milliseconds
constexpr guint silenceAfterSlowness = 30'000;
constexpr int longestSilence = 30'000;
constexpr guint timeForMoreChanges = 1000;
constexpr gint64 longestTrust = 55'000'000; // microseconds: changes may not have been told
constexpr gint64 restAfterReading = 3;      // times as long as it took
constexpr std::size_t maxChanges = 10'000;

/// Whether anything is written on the page itself, those within it aside.
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

/// A window that a plan wants, or whose outline has to say so.
struct AtspiApplication::Window {
    AtspiReference reference;
    std::string title;
    TreeExtent extent;
    AtspiTreeReader::Texts texts = AtspiTreeReader::Texts::none;
    std::unique_ptr<AtspiTreeReader> reader;
    gint64 lastWhole = 0;
    bool isOutlined = false; ///< its documents say what it is
    int looksForTexts = 5;

    [[nodiscard]] bool isWatched() const { return reader && texts == AtspiTreeReader::Texts::all; }
};

AtspiApplication::AtspiApplication(const AtspiBus& bus_, std::string name, Task onRead_)
    : bus(bus_),
      root{std::move(name), atspi::rootPath},
      onRead(std::move(onRead_)),
      enabled(EINPROGRESS) {}

AtspiApplication::~AtspiApplication() = default;

void AtspiApplication::read(std::shared_ptr<const ReadingPlan> plan_, bool enables_) {
    plan = std::move(plan_);
    enables = enables_;
    if (state == State::reading)
        isReadAgain = true;
    else if (state == State::ready && !soon)
        begin();
}

void AtspiApplication::begin() {
    state = State::reading;
    begun = g_get_monotonic_time();
    isReadAgain = false;
    told.clear();
    soon.reset();
    if (!calls) {
        calls = std::make_unique<AtspiCalls>(bus.bulk, lifetime.guard([this] {
            if (peer) // the socket may be at fault, and not the application
                return losePeer();
            giveUp("it does not answer");
            waitForAnswer();
        }));
        list = std::make_unique<AtspiTreeReader>(*calls, traits, root);
    }
    deadline = contextTimer(longestReading, [this] {
        giveUp("it answers too slowly");
        silence = contextTimer(silenceAfterSlowness, [this] { state = State::ready; });
    });
    hasTraits ? askToExpose() : askToolkit();
}

void AtspiApplication::askToolkit() {
    calls->get(root, atspi::application, "ToolkitName", lifetime.guard([this](GVariant* reply) {
        traits.toolkit = toolkitOf(decodeTextProperty(reply).value_or(""));
        hasTraits = true;
        askToExpose();
    }));
}

/// Chromium and what is built on it show no document before somebody has asked for attributes, and
/// may stop when nobody has for a while.
void AtspiApplication::askToExpose() {
    list->forget();
    const auto next = lifetime.guard([this] { takeWindowList(); });
    if (!enables)
        return list->read(windowList, AtspiTreeReader::Texts::none, next);
    calls->send({root, atspi::accessible, "GetAttributes"},
                lifetime.guard([this, next](GVariant* reply) {
                    enabled = reply != nullptr ? 0 : ENOTSUP;
                    list->read(windowList, AtspiTreeReader::Texts::none, next);
                }));
}

void AtspiApplication::takeWindowList() {
    if (list->tree()->role == AccessibilityRole::unreadable) {
        giveUp("it does not answer as an application should");
        silence = contextTimer(silenceAfterSlowness, [this] { state = State::ready; });
        return;
    }
    auto former = std::exchange(open, {});
    for (auto& [reference, title] : list->listChildren()) {
        const auto& present = reference;
        const auto known = std::find_if(former.begin(), former.end(), [&](const auto& window) {
            return window && window->reference == present;
        });
        open.push_back(known != former.end() ? std::move(*known) : std::make_unique<Window>());
        open.back()->reference = std::move(reference);
        open.back()->title = std::move(title);
    }
    readWindow(0);
}

void AtspiApplication::readWindow(std::size_t index) {
    if (index == open.size())
        return finish();
    auto& window = *open[index];
    const auto first = plan->byTitle(window.title);
    if (first.extent.maxElements == 0) {
        window.reader.reset();
        return readWindow(index + 1);
    }
    if (!window.reader) {
        window.reader = std::make_unique<AtspiTreeReader>(*calls, traits, window.reference);
        window.texts = AtspiTreeReader::Texts::none;
        window.extent = first.extent;
        window.lastWhole = g_get_monotonic_time();
    } else if (g_get_monotonic_time() - window.lastWhole >= longestTrust) {
        window.lastWhole = g_get_monotonic_time();
        window.reader->forget();
    }
    window.isOutlined = !first.isFinal;
    first.isFinal ? readWhole(index, first.extent) : readOutline(index, first.extent);
}

/// Reads as much as was read before. Where the documents are shown no more, others may be: those
/// of another tab, or others in their place.
void AtspiApplication::readOutline(std::size_t index, const TreeExtent& outline) {
    auto& window = *open[index];
    const auto next = lifetime.guard([this, index, outline] { decide(index, outline); });
    window.reader->forgetWayToDocuments();
    window.reader->read(window.extent, window.texts, lifetime.guard([this, index, next] {
        auto& read = *open[index];
        if (read.reader->showsDocument() && read.reader->hasDocument())
            return next();
        read.reader->hasDocument() ? read.reader->forgetDocuments() : read.reader->forget();
        read.reader->read(read.extent, read.texts, next);
    }));
}

void AtspiApplication::decide(std::size_t index, const TreeExtent& outline) {
    auto& window = *open[index];
    const auto extent = plan->byTree(window.title, *window.reader->tree());
    if (extent.maxElements > 0)
        return readWhole(index, extent);
    if (!window.isWatched())
        return readWindow(index + 1);
    window.texts = AtspiTreeReader::Texts::none;
    window.extent = outline;
    window.reader->read(outline, window.texts,
                        lifetime.guard([this, index] { readWindow(index + 1); }));
}

/// What is read is followed from before it is read, so that no change falls between.
void AtspiApplication::readWhole(std::size_t index, const TreeExtent& extent) {
    const auto start = lifetime.guard([this, index, extent] {
        auto& window = *open[index];
        window.texts = AtspiTreeReader::Texts::all;
        window.extent = extent;
        window.reader->read(extent, window.texts,
                            lifetime.guard([this, index] { readWindow(index + 1); }));
    });
    if (changes)
        return start();
    const auto follow = lifetime.guard([this, start] {
        changes = bus.events.follow(
            root.bus, lifetime.guard([this](const AtspiEvent& event) { receive(event); }), start);
    });
    hasPeer ? follow() : connectDirectly(follow);
}

/// Much is going to be asked: the application's own socket spares the bus the work, where there is
/// one that can be reached.
void AtspiApplication::connectDirectly(Task next) {
    hasPeer = true;
    calls->send({root, atspi::application, "GetApplicationBusAddress"},
                lifetime.guard([this, next = std::move(next)](GVariant* reply) {
                    const auto address = decodeText(reply).value_or("");
                    if (!address.empty())
                        peer = std::make_unique<AtspiConnection>(
                            address, AtspiConnection::Kind::peer,
                            lifetime.guard([this] { losePeer(); }));
                    if (peer && peer->bus() == nullptr)
                        peer.reset();
                    if (peer)
                        calls->use(*peer, root.bus);
                    next();
                }));
}

/// What was asked over the socket stays without an answer, and is asked again over the bus.
void AtspiApplication::losePeer() {
    if (state == State::silent)
        return;
    endReading();
    state = State::ready;
    begin();
}

void AtspiApplication::finish() {
    published = {.state = ReadState::read, .problem = {}, .windows = {}};
    const bool awaitsDocuments = isExposing();
    for (const auto& window : open) {
        AccessibleWindow shown;
        shown.title = window->title;
        if (window->reader && !(awaitsDocuments && window->isOutlined)) {
            shown.state = ReadState::read;
            shown.extent = window->extent;
            shown.tree = window->reader->tree();
        }
        if (shown.tree && awaitsTexts(*window, *shown.tree)) {
            shown.state = ReadState::notReadYet;
            shown.tree = nullptr;
            isReadAgain = true;
        }
        if (shown.tree && shown.tree->role == AccessibilityRole::unreadable) {
            shown.state = ReadState::couldNotBeRead;
            shown.problem = "it does not answer as a window should";
            shown.tree = nullptr;
            window->reader.reset();
        }
        published.windows.push_back(std::move(shown));
    }
    if (std::none_of(open.begin(), open.end(),
                     [](const auto& window) { return window->isWatched(); }))
        changes.reset();
    deadline.reset();
    state = State::ready;
    duration = g_get_monotonic_time() - begun;
    for (const auto& [path, change] : told)
        apply({path, change});
    if (isReadAgain || awaitsDocuments)
        readSoon();
    onRead();
}

/// Firefox has no texts for who is the first to ask for them, and does not tell when it has: they
/// are asked for again, unless there turn out to be none.
bool AtspiApplication::awaitsTexts(Window& window, const AccessibleElement& tree) {
    if (traits.toolkit != AtspiToolkit::gecko || !window.isWatched() || window.looksForTexts == 0)
        return false;
    const bool isAwaiting = lacksTexts(tree) && --window.looksForTexts > 0;
    if (isAwaiting)
        window.lastWhole = g_get_monotonic_time() - longestTrust;
    else
        window.looksForTexts = 0;
    return isAwaiting;
}

/// Whether the application may be about to show the documents that it was asked for lately: it
/// shows those of all its windows or none.
bool AtspiApplication::isExposing() {
    const bool wantsDocuments = std::any_of(open.begin(), open.end(),
                                            [](const auto& window) { return window->isOutlined; });
    const bool hasDocuments = std::any_of(open.begin(), open.end(), [](const auto& window) {
        return window->reader && window->reader->hasDocument();
    });
    return enables && wantsDocuments && !hasDocuments && looksForDocuments-- > 0;
}

/// What was known may be wrong by the time it answers again.
void AtspiApplication::giveUp(std::string problem) {
    endReading();
    state = State::silent;
    hasPeer = false;
    traits = {};
    hasTraits = false;
    enabled = ETIMEDOUT;
    published = {.state = ReadState::couldNotBeRead, .problem = std::move(problem), .windows = {}};
    onRead();
}

void AtspiApplication::endReading() {
    deadline.reset();
    soon.reset();
    told.clear();
    open.clear();
    list.reset();
    calls.reset();
    peer.reset();
    changes.reset();
}

/// One question is left with it; the answer, however late, ends the silence. An answer can be lost,
/// so it is tried again after a while in any case.
void AtspiApplication::waitForAnswer() {
    callBus(bus.main,
            {root.bus.c_str(), root.path.c_str(), atspi::accessible, "GetRole", nullptr,
             longestSilence},
            lifetime.guard([this](GVariant*) {
                state = State::ready;
                begin();
            }));
}

/// What has been told once makes no difference until it has been read.
void AtspiApplication::receive(const AtspiEvent& event) {
    if (told.size() == maxChanges && state == State::reading) { // too many to follow
        isReadAgain = true;
        for (const auto& window : open)
            window->lastWhole = g_get_monotonic_time() - longestTrust;
        return;
    }
    if (told.size() == maxChanges)
        told.clear();
    if (told.emplace(event.path, event.change).second && state != State::reading)
        apply(event);
}

void AtspiApplication::apply(const AtspiEvent& event) {
    bool matters = event.change == AtspiChange::windows || event.change == AtspiChange::document ||
                   (list && list->note(event));
    for (const auto& window : open)
        matters = (window->isWatched() && window->reader->note(event)) || matters;
    if (matters)
        readSoon();
}

/// Changes come in swarms: those of a second are read together. An application that takes long is
/// left in peace for longer.
void AtspiApplication::readSoon() {
    if (soon || state != State::ready)
        return;
    const auto rest = static_cast<guint>(restAfterReading * duration / 1000);
    soon = contextTimer(std::max(timeForMoreChanges, rest), [this] {
        if (state == State::ready)
            begin();
    });
}

} // namespace quorva
