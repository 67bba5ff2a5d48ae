#include "platform/linux/calendars/IcsFolderStore.h"

#include <mutex>

namespace quorva {
namespace {

constexpr Seconds answerTimeout{10};
constexpr Seconds changePause{0.5}; // a sync writes many files
constexpr Seconds secondLookDelay{6};

} // namespace

/// Passes tasks from the thread to the main loop, until the store is destroyed.
struct IcsFolderStore::Outbox {
    explicit Outbox(MainLoop& loop_) : loop(&loop_) {}

    void post(Task task) {
        const std::lock_guard lock(mutex);
        if (loop)
            loop->post(std::move(task));
    }
    void close() {
        const std::lock_guard lock(mutex);
        loop = nullptr;
    }

    std::mutex mutex;
    MainLoop* loop;
};

/// A fetch that waits for its answer. Lives as long as its subscription; main thread only.
struct IcsFolderStore::Request {
    std::function<void(CalendarWindow)> done;
    Timer timer;
};

IcsFolderStore::IcsFolderStore(MainLoop& loop_, IcsPlaces places, CalendarConsent consent_)
    : loop(loop_),
      consent(std::move(consent_)),
      folders(std::make_shared<IcsFolders>(std::move(places))),
      outbox(std::make_shared<Outbox>(loop_)),
      watch([this](const WatchedFolder& folder) { noteChange(folder); }) {
    listFolders();
}

IcsFolderStore::~IcsFolderStore() {
    folders->abandon();
    outbox->close();
}

CalendarAuthorization IcsFolderStore::authorizationStatus() const {
    return consent.status();
}

void IcsFolderStore::requestFullAccess(std::function<void(AccessAnswer)> done) {
    consent.request(std::move(done));
}

std::vector<CalendarSource> IcsFolderStore::sources() const {
    return knownSources;
}

Subscription IcsFolderStore::onChange(Task callback) {
    return changes.add(std::move(callback));
}

Subscription IcsFolderStore::fetchEvents(Time start, Time end,
                                         std::function<void(CalendarWindow)> done) {
    auto request = std::make_shared<Request>(Request{.done = std::move(done)});
    const std::weak_ptr<Request> weak = request;
    request->timer =
        loop.after(answerTimeout, lifetime.guard([this, weak] { handleTimeout(weak); }));
    (void)thread.post(
        [start, end, hints = popHints(), held = folders, box = outbox,
         back = std::make_shared<std::function<void(IcsFolders::Findings)>>(lifetime.guard(
             [this, weak](const IcsFolders::Findings& found) { answer(weak, found); }))] {
            box->post([back, found = held->look(start, end, hints)] { (*back)(found); });
        });
    return Subscription([held = std::move(request)]() mutable { held.reset(); });
}

void IcsFolderStore::answer(const std::weak_ptr<Request>& request,
                            const IcsFolders::Findings& findings) {
    adopt(findings);
    const auto waiting = request.lock();
    if (!waiting || !waiting->done)
        return;
    waiting->timer.reset();
    std::exchange(waiting->done, nullptr)(findings.window);
}

/// Reports all calendars as failed.
void IcsFolderStore::handleTimeout(const std::weak_ptr<Request>& request) {
    const auto waiting = request.lock();
    if (!waiting || !waiting->done)
        return;
    CalendarWindow window;
    for (const auto& source : knownSources)
        window.failed.push_back({source.title, "no answer within 10 seconds", icsIdentifier});
    if (window.failed.empty())
        window.failed.push_back({"calendar folders", "no answer within 10 seconds", icsIdentifier});
    window.calendars = window.failed.size();
    std::exchange(waiting->done, nullptr)(std::move(window));
}

void IcsFolderStore::listFolders() {
    (void)thread.post([held = folders, box = outbox,
                       back = std::make_shared<std::function<void(IcsFolders::Findings)>>(
                           lifetime.guard([this](const IcsFolders::Findings& found) {
                               adopt(found);
                           }))] { box->post([back, found = held->list()] { (*back)(found); }); });
}

void IcsFolderStore::adopt(const IcsFolders::Findings& findings) {
    const bool isNew = findings.sources != knownSources;
    knownSources = findings.sources;
    // A change of a folder before it was watched may have been missed.
    for (const auto& added : watch.watch(findings.watch))
        if (!added.awaited)
            changed.insert(added.path);
    watched.clear();
    for (const auto& folder : findings.watch)
        if (watch.isWatched(folder.path))
            watched.insert(folder.path);
    if (findings.isUnsettled)
        secondLook = loop.after(secondLookDelay, lifetime.guard([this] { changes.call(); }));
    if (isNew)
        announceSoon();
}

void IcsFolderStore::noteChange(const WatchedFolder& folder) {
    changed.insert(folder.path);
    announceSoon();
}

void IcsFolderStore::announceSoon() {
    if (announcement)
        return;
    announcement = loop.after(changePause, lifetime.guard([this] {
        announcement.reset();
        changes.call();
    }));
}

/// The hints for the next look.
IcsFolders::Hints IcsFolderStore::popHints() {
    return {.changed = std::exchange(changed, {}), .watched = watched};
}

} // namespace quorva
