// The applications of the user's session. A process belongs to an application by the systemd scope
// it was started in, by its Flatpak, Snap or AppImage, by the desktop entry of its program, or by a
// well-known executable name.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/Applications.h"
#include "platform/linux/processes/ApplicationScopes.h"
#include "platform/linux/processes/DesktopEntries.h"
#include "platform/linux/processes/LinuxProcessTable.h"

#include <map>
#include <unordered_map>

namespace quorva {

class LinuxApplications final : public Applications {
public:
    /// The services must outlive this.
    LinuxApplications(MainLoop& loop, LinuxProcessTable& processTable, DesktopEntries& entries,
                      ApplicationScopes scopes);

    [[nodiscard]] std::vector<RunningApplication> runningApplications() override;
    [[nodiscard]] std::optional<std::string> ownBundleIdentifier() const override;
    [[nodiscard]] bool isReady() const override;
    [[nodiscard]] Subscription onReady(Task callback) override;
    [[nodiscard]] Subscription onLaunch(Task callback) override;
    [[nodiscard]] Subscription onQuit(Task callback) override;

    /// Calls the subscribers because applications have started or ended: at once and, for all
    /// further calls within a quarter of a second, once more at its end.
    void noteLaunch();
    void noteQuit();

private:
    using Process = LinuxProcessTable::Process;

    /// The application that a process belongs to. Processes with the same key are one application.
    struct Identity {
        std::string key;
        std::optional<std::string> name;
        std::optional<std::string> identifier;
    };
    struct Member {
        const Process* process;
        Identity identity;
    };
    /// Passes on the first of several events in quick succession at once, and the rest as one.
    class Burst {
    public:
        explicit Burst(MainLoop& loop_) : loop(loop_) {}
        void note();
        CallbackList<> callbacks;

    private:
        MainLoop& loop;
        Timer pause;
        bool isPending = false;
        Lifetime lifetime;
    };

    void noteEntries();
    [[nodiscard]] std::optional<Identity> ownIdentity(const Process& process);
    [[nodiscard]] Identity identityOfEntry(const DesktopEntry& entry, const Process& process) const;
    [[nodiscard]] Identity identityOfId(std::string_view id, const Process& process) const;
    [[nodiscard]] Identity identityOfSnap(const std::string& snap, const Process& process) const;
    [[nodiscard]] Identity identityOfUnit(const UnitApplication&, const Process& process) const;
    [[nodiscard]] std::optional<Identity> identityOfFlatpak(const Process& process);
    [[nodiscard]] std::optional<Identity> identityOfAppImage(const Process& process);
    [[nodiscard]] std::vector<Member> members(const std::vector<Process>& processes);
    [[nodiscard]] std::optional<Identity>
    identityInScope(const Process& process, const ApplicationScopes::Members& scoped,
                    const std::unordered_map<std::string_view, const Process*>& mains);
    [[nodiscard]] const Process* topmost(const std::vector<const Process*>& processes);

    LinuxProcessTable& processTable;
    DesktopEntries& entries;
    const ApplicationScopes scopes;
    Burst launches;
    Burst quits;
    CallbackList<> readies;
    Subscription entriesObserver;
};

} // namespace quorva
