#include "platform/linux/accessibility/AtspiApplications.h"

#include "platform/linux/accessibility/AtspiApplication.h"
#include "platform/linux/glib/BusCall.h"
#include "platform/linux/glib/BusSignals.h"
#include "platform/linux/glib/MainContext.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <string_view>
#include <utility>

namespace quorva {
namespace {

constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";

constexpr int registryTimeout = 3000; // milliseconds
constexpr guint timeToEmbed = 300;    // milliseconds, from joining the bus to the registry's list
constexpr std::size_t maxApplications = 1000;

} // namespace

AtspiAnswer emptyAnswer(ReadState state, std::string problem, int enableResult) {
    return {{.state = state, .problem = std::move(problem), .windows = {}}, enableResult};
}

/// A process on the accessibility bus that has registered as an application.
struct AtspiApplications::Peer {
    ProcessIdentifier process = 0; ///< 0: not known yet
    std::map<ProcessIdentifier, bool> speaksFor;
    ProcessIdentifier readFor = 0;                 ///< the wanted process; 0 for none
    std::unique_ptr<AtspiApplication> application; ///< null when it is not wanted
};

AtspiApplications::AtspiApplications(GObjectPtr<GDBusConnection> bus_, const std::string& address,
                                     const AtspiRequests& wanted_, OnAnswer onAnswer_, Task onLost_)
    : wanted(wanted_),
      onAnswer(std::move(onAnswer_)),
      onLost(std::move(onLost_)),
      bus(std::move(bus_)),
      bulk(address, AtspiConnection::Kind::bus, onLost),
      events(GObjectPtr<GDBusConnection>(G_DBUS_CONNECTION(g_object_ref(bus.get()))), address),
      closed(g_signal_connect(bus.get(), "closed",
                              G_CALLBACK(+[](GDBusConnection*, gboolean, GError*, gpointer self) {
                                  const auto call = static_cast<AtspiApplications*>(self)->onLost;
                                  call();
                              }),
                              this)),
      owners(subscribeToSignals(
          bus.get(),
          {.sender = busName, .interface = busName, .member = "NameOwnerChanged", .path = busPath},
          [this](const BusSignal& signal) { handleOwnerChange(signal.parameters); })) {}

AtspiApplications::~AtspiApplications() {
    g_signal_handler_disconnect(bus.get(), closed);
    owners.reset();
    peers.clear();
    g_dbus_connection_close(bus.get(), nullptr, nullptr, nullptr);
}

void AtspiApplications::handleOwnerChange(GVariant* change) {
    if (g_variant_is_of_type(change, G_VARIANT_TYPE("(sss)")) == FALSE)
        return;
    const gchar* name = nullptr;
    const gchar* owner = nullptr;
    g_variant_get(change, "(&s&s&s)", &name, nullptr, &owner);
    if (std::string_view(name) == atspi::registryName && owner[0] != '\0')
        events.registerAnew();
    if (name[0] != ':')
        return;
    if (owner[0] != '\0') {
        if (!listSoon)
            listSoon = contextTimer(timeToEmbed, [this] { readWanted(); });
    } else if (peers.erase(name) > 0) {
        for (const auto& [process, request] : wanted)
            report(process);
    }
}

/// The call starts the registry where it is not running. When it does not answer in time, what is
/// known of the applications stands.
void AtspiApplications::readWanted() {
    if (bulk.bus() == nullptr) {
        const auto call = onLost; // destroys this
        return call();
    }
    listSoon.reset();
    callBus(bus.get(),
            {atspi::registryName, atspi::rootPath, atspi::accessible, "GetChildren", nullptr,
             registryTimeout, G_DBUS_CALL_FLAGS_NONE},
            lifetime.guard([this](GVariant* reply) {
                if (const auto registered = decodeReferences(reply, "", maxApplications)) {
                    handleRegistered(*registered);
                } else if (!isListed) {
                    const auto call = onLost; // destroys this
                    call();
                } else if (isComplete()) {
                    assign();
                }
            }));
}

void AtspiApplications::handleRegistered(const std::vector<AtspiReference>& registered) {
    isListed = true;
    std::set<std::string_view> present;
    for (const auto& application : registered)
        present.insert(application.bus);
    std::erase_if(peers, [&](const auto& known) { return !present.contains(known.first); });
    for (const auto name : present)
        if (peers.try_emplace(std::string(name)).second)
            askProcess(std::string(name));
    if (isComplete())
        assign();
}

/// Answered by the bus itself, also for programs that hang.
void AtspiApplications::askProcess(const std::string& name) {
    callBus(bus.get(),
            {busName, busPath, busName, "GetConnectionUnixProcessID",
             g_variant_new("(s)", name.c_str()), registryTimeout},
            lifetime.guard([this, name](GVariant* reply) {
                const auto process = decodeNumber(reply);
                if (const auto known = peers.find(name); known != peers.end()) {
                    if (process)
                        known->second.process = static_cast<ProcessIdentifier>(*process);
                    else
                        peers.erase(known);
                }
                if (isComplete())
                    assign();
            }));
}

/// Whether the process of every application is known.
bool AtspiApplications::isComplete() const {
    return isListed && std::all_of(peers.begin(), peers.end(),
                                   [](const auto& peer) { return peer.second.process != 0; });
}

/// The wanted process that a process on the bus speaks for; 0 for none. Where one of several has
/// started the other, as a program starts the browser, it is the nearer one.
ProcessIdentifier AtspiApplications::wantedProcessOf(Peer& peer) const {
    ProcessIdentifier nearest = 0;
    for (const auto& [process, request] : wanted) {
        const auto [known, isNew] = peer.speaksFor.try_emplace(process, false);
        if (isNew)
            known->second = processes.speaksFor(peer.process, process);
        if (known->second && (nearest == 0 || processes.speaksFor(process, nearest)))
            nearest = process;
    }
    for (const auto& [process, request] : wanted)
        if (nearest == 0 && processes.runTheSame(peer.process, process))
            nearest = process; // another instance: only one of them lists the application
    return nearest;
}

void AtspiApplications::assign() {
    countInstances();
    std::set<ProcessIdentifier> read;
    for (auto& [name, peer] : peers) {
        const auto former = std::exchange(peer.readFor, wantedProcessOf(peer));
        if (peer.readFor == 0) {
            peer.application.reset();
            continue;
        }
        if (former == peer.readFor || former == 0) // else what is known is reported at once
            read.insert(peer.readFor);
        if (!peer.application)
            peer.application = std::make_unique<AtspiApplication>(
                AtspiBus{bus.get(), bulk, events}, name,
                lifetime.guard([this, &peer = peer] { report(peer.readFor); }));
        const auto& request = wanted.at(peer.readFor);
        peer.application->read(request.reading.plan, request.enables);
    }
    for (const auto& [process, request] : wanted)
        if (!read.contains(process))
            report(process);
}

/// Looks through all processes, so it is done once a request.
void AtspiApplications::countInstances() {
    absent.clear();
    for (const auto& [main, request] : wanted) {
        if (request.reading.plan->outline.maxElements == 0)
            continue;
        for (const auto instance : processes.instancesOf(main)) {
            const bool isOnBus = std::any_of(peers.begin(), peers.end(), [&](const auto& peer) {
                return processes.speaksFor(peer.second.process, instance);
            });
            if (!isOnBus)
                ++(processes.isSettled(instance) ? absent[main].silent : absent[main].starting);
        }
    }
}

/// Reports what all that speak for a process have shown.
void AtspiApplications::report(ProcessIdentifier process) {
    auto answer = emptyAnswer(ReadState::read, "", ENOTSUP);
    bool isOnBus = false;
    for (const auto& [name, peer] : peers) {
        if (!peer.application || peer.readFor != process)
            continue;
        isOnBus = true;
        const auto& read = peer.application->windows();
        if (read.state < answer.windows.state) {
            answer.windows.state = read.state;
            answer.windows.problem = read.problem;
        }
        answer.windows.windows.insert(answer.windows.windows.end(), read.windows.begin(),
                                      read.windows.end());
        if (answer.enableResult != 0)
            answer.enableResult = peer.application->enableResult();
    }
    if (isOnBus) {
        if (const auto others = absent.find(process); others != absent.end()) {
            answer.windows.silentInstances = others->second.silent;
            answer.windows.startingInstances = others->second.starting;
        }
        return onAnswer(process, std::move(answer));
    }
    onAnswer(process, processes.isSettled(process)
                          ? emptyAnswer(ReadState::couldNotBeRead,
                                        "it does not show its windows to accessibility; if it was "
                                        "started before that was switched on, start it again",
                                        ESRCH)
                          : emptyAnswer(ReadState::notReadYet, "", EINPROGRESS));
}

} // namespace quorva
