// The calendars in folders of .ics files as a calendar store of its own, or as a part of one.
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

/// Where the user's consent is kept and asked for. Files need none of the system's.
struct CalendarConsent {
    std::function<CalendarAuthorization()> status = [] {
        return CalendarAuthorization::fullAccess;
    };
    std::function<void(std::function<void(CalendarStore::AccessAnswer)>)> request =
        [](const std::function<void(CalendarStore::AccessAnswer)>& done) {
            done({.granted = true});
        };
};

/// Needs a loop that runs GLib's default main context: changes of the folders are told there. Files
/// are read on a thread of its own.
class IcsFolderStore final : public CalendarStore {
public:
    /// Lists the folders at once, in the background. The loop must outlive this.
    IcsFolderStore(MainLoop& loop, IcsPlaces places, std::vector<std::string> userAddresses,
                   CalendarConsent consent = {});
    ~IcsFolderStore() override;

    IcsFolderStore(const IcsFolderStore&) = delete;
    IcsFolderStore& operator=(const IcsFolderStore&) = delete;

    [[nodiscard]] CalendarAuthorization authorizationStatus() const override;
    void requestFullAccess(std::function<void(AccessAnswer)> done) override;
    [[nodiscard]] Subscription fetchEvents(Time start, Time end,
                                           std::function<void(CalendarWindow)> done) override;
    [[nodiscard]] std::vector<CalendarSource> sources() const override;
    [[nodiscard]] Subscription onChange(Task callback) override;

    /// How often files were read so far.
    [[nodiscard]] std::size_t reads() const { return folders->reads(); }

private:
    struct Outbox;
    struct Request;

    void listFolders();
    void answer(const std::weak_ptr<Request>& request, const IcsFolders::Findings& findings);
    void giveUp(const std::weak_ptr<Request>& request);
    void learn(const IcsFolders::Findings& findings);
    void noteChange(const WatchedFolder& folder);
    void announceSoon();
    [[nodiscard]] IcsFolders::Hints takeHints();

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
