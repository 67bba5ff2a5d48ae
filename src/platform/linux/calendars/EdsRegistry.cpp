#include "platform/linux/calendars/EdsRegistry.h"

#include "platform/linux/glib/Handles.h"

#include <array>
#include <libedataserver/libedataserver.h>
#include <string_view>
#include <utility>

namespace quorva {

/// The thread's side. Its tasks own it, so that it may outlive an owner who does not wait for a
/// service that hangs.
class EdsRegistry::Worker : public std::enable_shared_from_this<Worker> {
public:
    using Report = std::function<void(News)>;

    explicit Worker(Report report_)
        : report(std::move(report_)), cancellable(g_cancellable_new()) {}

    /// On the thread.
    void start() {
        if (connect())
            follow();
    }

    /// Cancels what can be cancelled. Callable from any thread.
    void cancel() { g_cancellable_cancel(cancellable.get()); }

    /// On the thread, last.
    void end() {
        if (registry)
            g_signal_handlers_disconnect_by_data(registry.get(), this);
        registry.reset();
    }

private:
    bool connect() {
        GError* error = nullptr;
        bus.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable.get(), &error));
        if (bus)
            g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
        else
            tell({.state = State::absent, .problem = messageOf(error)});
        return bus != nullptr;
    }

    void follow() {
        GError* error = nullptr;
        registry.reset(e_source_registry_new_sync(cancellable.get(), &error));
        if (!registry)
            return tell({.state = State::failed, .problem = messageOf(error)});
        if (!knowsSources()) {
            registry.reset();
            return tell(isServiceKnown()
                            ? News{.state = State::failed, .problem = "it told of no calendars"}
                            : News{.state = State::absent,
                                   .problem = "Evolution Data Server is not installed"});
        }
        tellSources();
        listen();
    }

    /// The service has built-in sources, and the library takes a service that does not exist for
    /// one without any.
    [[nodiscard]] bool knowsSources() const {
        auto* const list = e_source_registry_list_sources(registry.get(), nullptr);
        const bool known = list != nullptr;
        g_list_free_full(list, g_object_unref);
        return known;
    }

    /// Whether the service runs on the bus, or could be started there.
    [[nodiscard]] bool isServiceKnown() const {
        constexpr std::string_view service = "org.gnome.evolution.dataserver.Sources5";
        constexpr int timeout = 5000; // milliseconds
        for (const auto* const list : {"ListNames", "ListActivatableNames"}) {
            const GVariantPtr reply(g_dbus_connection_call_sync(
                bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                list, nullptr, G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, timeout,
                cancellable.get(), nullptr));
            if (!reply)
                return true; // not known to be absent
            const GVariantPtr names(g_variant_get_child_value(reply.get(), 0));
            for (gsize i = 0; i < g_variant_n_children(names.get()); ++i) {
                const gchar* name = nullptr;
                g_variant_get_child(names.get(), i, "&s", &name);
                if (name == service)
                    return true;
            }
        }
        return false;
    }

    void listen() {
        static constexpr std::array signals{"source-added", "source-removed", "source-changed",
                                            "source-enabled", "source-disabled"};
        const auto note = +[](ESourceRegistry*, ESource*, gpointer self) {
            static_cast<Worker*>(self)->noteChange();
        };
        for (const auto* signal : signals)
            g_signal_connect(registry.get(), signal, G_CALLBACK(note), this);
    }

    /// A source changes in many steps, which are reported as one: when the thread has nothing else
    /// to do. The task must not keep the worker, and with it the registry, alive.
    void noteChange() {
        if (std::exchange(isNoted, true))
            return;
        postTo(g_main_context_get_thread_default(), G_PRIORITY_LOW, [weak = weak_from_this()] {
            if (const auto self = weak.lock()) {
                self->isNoted = false;
                if (self->registry)
                    self->tellSources();
            }
        });
    }

    void tellSources() {
        tell({.state = State::present, .problem = {}, .sources = readEdsSources(*registry)});
    }

    void tell(News news) {
        postToMain([self = shared_from_this(), news = std::move(news)] { self->report(news); });
    }

    static std::string messageOf(GError* error) {
        const GErrorPtr owned(error);
        return owned ? owned->message : "unknown error";
    }

    const Report report;
    const GObjectPtr<GCancellable> cancellable;
    GObjectPtr<GDBusConnection> bus;      ///< never left to end the program
    GObjectPtr<ESourceRegistry> registry; ///< while the sources are followed
    bool isNoted = false;
};

EdsRegistry::EdsRegistry(Task onChange_, Task onAnswer_)
    : onChange(std::move(onChange_)), onAnswer(std::move(onAnswer_)) {}

EdsRegistry::~EdsRegistry() {
    stop();
}

void EdsRegistry::start() {
    if (worker)
        return;
    worker =
        std::make_shared<Worker>(lifetime.guard([this](News news) { adopt(std::move(news)); }));
    thread = std::make_unique<ContextThread>(Seconds(0));
    thread->post([held = worker] { held->start(); });
}

void EdsRegistry::stop() {
    if (!worker)
        return;
    worker->cancel();
    thread->post([held = std::move(worker)] { held->end(); });
    thread.reset();
}

void EdsRegistry::adopt(News news) {
    if (news.state != State::present)
        stop();
    if (std::exchange(present, std::move(news)) != present)
        onChange();
    onAnswer();
}

} // namespace quorva
