// The calendars in folders of .ics files, as a calendar store of its own or as part of one.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/SerialQueue.h"
#include "platform/CalendarStore.h"
#include "platform/linux/calendars/IcsFolders.h"
#include "platform/linux/storage/FolderWatch.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace quorva {

/// How to look up the user's consent, and how to ask for it. By default, everything is allowed.
struct CalendarConsent {
    std::function<CalendarAuthorization()> status = [] {
        return CalendarAuthorization::fullAccess;
    };
    std::function<void(std::function<void(CalendarStore::AccessAnswer)>)> request =
        [](const std::function<void(CalendarStore::AccessAnswer)>& done) {
            done({.granted = true});
        };
};

/// Main thread only. The loop must run GLib's default main context, where changes of folders are
/// reported. Does not know which attendee is the user. Files are read on a thread of the store's
/// own.
class IcsFolderStore final : public CalendarStore {
public:
    /// Starts to list the folders in the background. The loop must outlive this.
    IcsFolderStore(MainLoop& loop, IcsPlaces places, CalendarConsent consent = {});
    ~IcsFolderStore() override;

    IcsFolderStore(const IcsFolderStore&) = delete;
    IcsFolderStore& operator=(const IcsFolderStore&) = delete;

    [[nodiscard]] CalendarAuthorization authorizationStatus() const override;
    void requestFullAccess(std::function<void(AccessAnswer)> done) override;
    void lookForCalendars() override { listFolders(); }
    [[nodiscard]] Subscription fetchEvents(Time start, Time end,
                                           std::function<void(CalendarWindow)> done) override;
    [[nodiscard]] std::vector<CalendarSource> sources() const override;
    [[nodiscard]] Subscription onChange(Task callback) override;

    /// How many times files were read so far.
    [[nodiscard]] std::size_t reads() const { return folders->reads(); }

private:
    struct Outbox;
    struct Request;

    void listFolders();
    void answer(const std::weak_ptr<Request>& request, const IcsFolders::Findings& findings);
    void handleTimeout(const std::weak_ptr<Request>& request);
    void adopt(const IcsFolders::Findings& findings);
    void noteChange(const WatchedFolder& folder);
    void announceSoon();
    [[nodiscard]] IcsFolders::Hints popHints();

    MainLoop& loop;
    const CalendarConsent consent;
    const std::shared_ptr<IcsFolders> folders; // used on the thread only
    const std::shared_ptr<Outbox> outbox;
    std::vector<CalendarSource> knownSources;
    std::set<std::filesystem::path> watched;
    std::set<std::filesystem::path> changed;
    CallbackList<> changes;
    FolderWatch watch;
    Timer announcement;
    Timer secondLook;
    SerialQueue thread{SerialQueue::unlimited, Seconds(2)}; // its tasks own what they touch
    Lifetime lifetime;
};

} // namespace quorva
