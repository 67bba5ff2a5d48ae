#include "platform/linux/accessibility/AtspiWorker.h"

#include "platform/linux/glib/BusCall.h"
#include "platform/linux/glib/MainContext.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <string_view>
#include <utility>

namespace quorva {
namespace {

constexpr const char* launcherName = "org.a11y.Bus";
constexpr const char* launcherPath = "/org/a11y/bus";
constexpr const char* statusInterface = "org.a11y.Status";
constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";

constexpr int longestStatus = 5000; // milliseconds
constexpr guint timeToAskAgain = 15'000;
constexpr int longestRegistry = 3000; // milliseconds
constexpr guint timeToEmbed = 300;    // milliseconds, from joining the bus to the registry's list
constexpr std::size_t maxApplications = 1000;

AtspiAnswer unread(ReadState state, std::string problem, int enableResult) {
    return {{.state = state, .problem = std::move(problem), .windows = {}}, enableResult};
}

} // namespace

/// A process on the accessibility bus that has registered as an application.
struct AtspiWorker::Speaker {
    ProcessIdentifier process = 0; ///< 0: not known yet
    std::map<ProcessIdentifier, bool> speaksFor;
    ProcessIdentifier wish = 0;                    ///< that it is read for; 0: nobody wants it
    std::unique_ptr<AtspiApplication> application; ///< null when nobody wants it
};

/// What depends on the connection to the accessibility bus.
struct AtspiWorker::Connected {
    Connected(GObjectPtr<GDBusConnection> bus_, const std::string& address, const Task& onLost)
        : bus(std::move(bus_)),
          bulk(address, AtspiConnection::Kind::bus, onLost),
          events(GObjectPtr<GDBusConnection>(G_DBUS_CONNECTION(g_object_ref(bus.get()))), address) {
    }
    ~Connected() {
        g_signal_handler_disconnect(bus.get(), closed);
        g_dbus_connection_signal_unsubscribe(bus.get(), owners);
        speakers.clear();
        g_dbus_connection_close(bus.get(), nullptr, nullptr, nullptr);
    }
    Connected(const Connected&) = delete;
    Connected& operator=(const Connected&) = delete;

    [[nodiscard]] bool isComplete() const {
        return isListed && std::all_of(speakers.begin(), speakers.end(), [](const auto& speaker) {
                   return speaker.second.process != 0;
               });
    }

    GObjectPtr<GDBusConnection> bus;
    AtspiConnection bulk;
    AtspiEvents events;
    gulong closed = 0;
    guint owners = 0;
    bool isListed = false;
    std::map<std::string, Speaker> speakers; ///< the registered applications, by name on the bus
    GSourcePtr listSoon;
};

AtspiWorker::AtspiWorker(Reports reports_) : reports(std::move(reports_)) {}

AtspiWorker::~AtspiWorker() {
    if (!session)
        return;
    g_bus_unwatch_name(launcherWatch);
    g_dbus_connection_signal_unsubscribe(session.get(), statusSignal);
}

void AtspiWorker::start() {
    using Take = std::function<void(GDBusConnection*)>;
    auto take =
        std::make_unique<Take>(lifetime.guard([this](GDBusConnection* bus) { takeSession(bus); }));
    g_bus_get(
        G_BUS_TYPE_SESSION, nullptr,
        [](GObject*, GAsyncResult* result, gpointer owned) {
            const std::unique_ptr<Take> call(static_cast<Take*>(owned));
            const GObjectPtr<GDBusConnection> bus(g_bus_get_finish(result, nullptr));
            (*call)(bus.get());
        },
        take.release());
}

void AtspiWorker::takeSession(GDBusConnection* bus) {
    if (bus == nullptr)
        return reports.trust(false);
    session.reset(G_DBUS_CONNECTION(g_object_ref(bus)));
    g_dbus_connection_set_exit_on_close(session.get(), FALSE);
    statusSignal = g_dbus_connection_signal_subscribe(
        session.get(), launcherName, atspi::properties, "PropertiesChanged", launcherPath,
        statusInterface, G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*,
           gpointer self) { static_cast<AtspiWorker*>(self)->askStatus(); },
        this, nullptr);
    launcherWatch = g_bus_watch_name_on_connection(
        session.get(), launcherName, G_BUS_NAME_WATCHER_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, const gchar*, gpointer self) {
            static_cast<AtspiWorker*>(self)->askStatus();
        },
        [](GDBusConnection*, const gchar*, gpointer self) {
            static_cast<AtspiWorker*>(self)->askStatus();
        },
        this, nullptr);
}

/// The launcher is started by the question where it does not run.
void AtspiWorker::askStatus() {
    callBus(session.get(),
            {launcherName, launcherPath, atspi::properties, "Get",
             g_variant_new("(ss)", statusInterface, "IsEnabled"), longestStatus,
             G_DBUS_CALL_FLAGS_NONE},
            lifetime.guard([this](GVariant* reply) {
                const auto isEnabled = decodeTruth(reply);
                if (!isEnabled) // it may be slow, and need not say anything by itself later
                    askAgain = contextTimer(timeToAskAgain, [this] { askStatus(); });
                takeStatus(isEnabled.value_or(isTrusted));
            }));
}

void AtspiWorker::switchOn(std::function<void(bool)> done) {
    if (!session) {
        done(false);
        return;
    }
    callBus(session.get(),
            {launcherName, launcherPath, atspi::properties, "Set",
             g_variant_new("(ssv)", statusInterface, "IsEnabled", g_variant_new_boolean(TRUE)), -1,
             G_DBUS_CALL_FLAGS_NONE},
            lifetime.guard([this, done = std::move(done)](GVariant* reply) {
                if (reply)
                    takeStatus(true);
                done(reply != nullptr);
            }));
}

void AtspiWorker::takeStatus(bool isEnabled) {
    isTrusted = isEnabled;
    reports.trust(isEnabled);
    if (!isEnabled)
        connected.reset();
    else
        connect();
}

void AtspiWorker::request(std::vector<AtspiRequest> requests) {
    wanted.clear();
    for (auto& request : requests)
        wanted[request.reading.process] = std::move(request);
    if (!isTrusted)
        return;
    connected ? listApplications() : connect();
}

void AtspiWorker::connect() {
    if (connected || isConnecting || wanted.empty())
        return;
    isConnecting = true;
    callBus(session.get(),
            {launcherName, launcherPath, launcherName, "GetAddress", nullptr, longestStatus,
             G_DBUS_CALL_FLAGS_NONE},
            lifetime.guard([this](GVariant* reply) { open(decodeText(reply).value_or("")); }));
}

void AtspiWorker::open(const std::string& address) {
    openBus(address, lifetime.guard([this, address](GObjectPtr<GDBusConnection>& bus) {
        isConnecting = false;
        bus&& isTrusted ? join(std::move(bus), address) : lose();
    }));
}

void AtspiWorker::join(GObjectPtr<GDBusConnection> bus, const std::string& address) {
    connected =
        std::make_unique<Connected>(std::move(bus), address, lifetime.guard([this] { lose(); }));
    connected->closed =
        g_signal_connect(connected->bus.get(), "closed",
                         G_CALLBACK(+[](GDBusConnection*, gboolean, GError*, gpointer self) {
                             static_cast<AtspiWorker*>(self)->lose();
                         }),
                         this);
    connected->owners = g_dbus_connection_signal_subscribe(
        connected->bus.get(), busName, busName, "NameOwnerChanged", busPath, nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
           GVariant* change, gpointer self) { static_cast<AtspiWorker*>(self)->noteOwner(change); },
        this, nullptr);
    if (connected->bulk.bus() == nullptr)
        return lose();
    listApplications();
}

/// The bus has gone, or could not be reached; the next request tries again.
void AtspiWorker::lose() {
    connected.reset();
    for (const auto& [process, request] : wanted)
        reports.answer(process, unread(ReadState::couldNotBeRead,
                                       "the accessibility bus can't be reached", ECONNREFUSED));
}

void AtspiWorker::noteOwner(GVariant* change) {
    if (g_variant_is_of_type(change, G_VARIANT_TYPE("(sss)")) == FALSE)
        return;
    const gchar* name = nullptr;
    const gchar* owner = nullptr;
    g_variant_get(change, "(&s&s&s)", &name, nullptr, &owner);
    if (std::string_view(name) == atspi::registryName && owner[0] != '\0')
        connected->events.registerAnew();
    if (name[0] != ':')
        return;
    if (owner[0] != '\0') {
        if (!connected->listSoon)
            connected->listSoon = contextTimer(timeToEmbed, [this] { listApplications(); });
    } else if (connected->speakers.erase(name) > 0) {
        for (const auto& [process, request] : wanted)
            report(process);
    }
}

/// The registry is started by the question where it does not run. One that does not answer in time
/// leaves what is known of the applications.
void AtspiWorker::listApplications() {
    connected->listSoon.reset();
    callBus(connected->bus.get(),
            {atspi::registryName, atspi::rootPath, atspi::accessible, "GetChildren", nullptr,
             longestRegistry, G_DBUS_CALL_FLAGS_NONE},
            lifetime.guard([this](GVariant* reply) {
                if (!connected)
                    return;
                if (const auto listed = decodeReferences(reply, "", maxApplications))
                    takeApplications(*listed);
                else if (!connected->isListed)
                    lose();
                else if (connected->isComplete())
                    assign();
            }));
}

void AtspiWorker::takeApplications(const std::vector<AtspiReference>& applications) {
    auto& speakers = connected->speakers;
    connected->isListed = true;
    std::set<std::string_view> present;
    for (const auto& application : applications)
        present.insert(application.bus);
    std::erase_if(speakers, [&](const auto& known) { return !present.contains(known.first); });
    for (const auto name : present)
        if (speakers.try_emplace(std::string(name)).second)
            askProcess(std::string(name));
    if (connected->isComplete())
        assign();
}

/// Answered by the bus itself, for programs that hang too.
void AtspiWorker::askProcess(const std::string& name) {
    callBus(connected->bus.get(),
            {busName, busPath, busName, "GetConnectionUnixProcessID",
             g_variant_new("(s)", name.c_str()), longestRegistry},
            lifetime.guard([this, name](GVariant* reply) {
                if (!connected)
                    return;
                const auto process = decodeNumber(reply);
                if (const auto known = connected->speakers.find(name);
                    known != connected->speakers.end()) {
                    if (process)
                        known->second.process = static_cast<ProcessIdentifier>(*process);
                    else
                        connected->speakers.erase(known);
                }
                if (connected->isComplete())
                    assign();
            }));
}

/// Of the processes that are wanted, the one that a process on the bus speaks for; 0 for none.
/// Where one of them has started the other, as a program starts the browser, it is the nearer one.
ProcessIdentifier AtspiWorker::wishFor(Speaker& speaker) const {
    ProcessIdentifier nearest = 0;
    for (const auto& [process, request] : wanted) {
        const auto [known, isNew] = speaker.speaksFor.try_emplace(process, false);
        if (isNew)
            known->second = processes.speaksFor(speaker.process, process);
        if (known->second && (nearest == 0 || processes.speaksFor(process, nearest)))
            nearest = process;
    }
    for (const auto& [process, request] : wanted)
        if (nearest == 0 && processes.runTheSame(speaker.process, process))
            nearest = process; // another instance: the application is listed by one of them only
    return nearest;
}

/// Has the applications read that are wanted, and lets go of the others.
void AtspiWorker::assign() {
    std::set<ProcessIdentifier> heard;
    for (auto& [name, speaker] : connected->speakers) {
        const auto former = std::exchange(speaker.wish, wishFor(speaker));
        if (speaker.wish == 0) {
            speaker.application.reset();
            continue;
        }
        if (former == speaker.wish || former == 0) // else what is known is told at once
            heard.insert(speaker.wish);
        if (!speaker.application)
            speaker.application = std::make_unique<AtspiApplication>(
                AtspiBus{connected->bus.get(), connected->bulk, connected->events}, name,
                lifetime.guard([this, &speaker = speaker] { report(speaker.wish); }));
        const auto& request = wanted[speaker.wish];
        speaker.application->read(request.reading.plan, request.enables);
    }
    for (const auto& [process, request] : wanted)
        if (!heard.contains(process))
            report(process);
}

/// Tells of an application what all who speak for it have shown.
void AtspiWorker::report(ProcessIdentifier process) {
    AtspiAnswer answer{{.state = ReadState::read, .problem = {}, .windows = {}}, ENOTSUP};
    bool isHeard = false;
    for (const auto& [name, speaker] : connected->speakers) {
        if (!speaker.application || speaker.wish != process)
            continue;
        isHeard = true;
        const auto& [state, problem, windows] = speaker.application->windows();
        if (state < answer.windows.state) {
            answer.windows.state = state;
            answer.windows.problem = problem;
        }
        answer.windows.windows.insert(answer.windows.windows.end(), windows.begin(), windows.end());
        if (answer.enableResult != 0)
            answer.enableResult = speaker.application->enableResult();
    }
    if (isHeard)
        return reports.answer(process, std::move(answer));
    reports.answer(process, processes.isSettled(process)
                                ? unread(ReadState::couldNotBeRead,
                                         "it does not show its windows to accessibility; if it was "
                                         "started before that was switched on, start it again",
                                         ESRCH)
                                : unread(ReadState::notReadYet, "", EINPROGRESS));
}

} // namespace quorva
