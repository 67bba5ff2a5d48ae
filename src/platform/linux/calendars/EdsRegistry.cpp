#include "platform/linux/calendars/EdsRegistry.h"

#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/MainContext.h"

#include <array>
#include <libedataserver/libedataserver.h>
#include <string_view>
#include <thread>
#include <utility>

namespace quorva {

/// The thread's side. It owns itself while the thread runs, so that an owner who goes does not have
/// to wait for a service that hangs.
class EdsRegistry::Worker : public std::enable_shared_from_this<Worker> {
public:
    using Report = std::function<void(News)>;

    explicit Worker(Report report_)
        : report(std::move(report_)),
          context(g_main_context_new()),
          loop(g_main_loop_new(context.get(), FALSE)),
          cancellable(g_cancellable_new()) {}

    void start() {
        std::thread([self = shared_from_this()] { self->run(); }).detach();
    }

    /// Ends the thread soon. Callable from any thread.
    void stop() {
        g_cancellable_cancel(cancellable.get());
        invoke([](Worker& self) { g_main_loop_quit(self.loop.get()); });
    }

private:
    struct ContextRelease {
        void operator()(GMainContext* owned) const { g_main_context_unref(owned); }
    };

    void run() {
        g_main_context_push_thread_default(context.get());
        if (const auto bus = connect())
            follow(bus.get());
        g_main_context_pop_thread_default(context.get());
    }

    GObjectPtr<GDBusConnection> connect() {
        GError* error = nullptr;
        GObjectPtr<GDBusConnection> bus(
            g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable.get(), &error));
        if (bus)
            g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
        else
            tell({.state = State::absent, .problem = messageOf(error)});
        return bus;
    }

    void follow(GDBusConnection* bus) {
        GError* error = nullptr;
        const GObjectPtr<ESourceRegistry> owned(
            e_source_registry_new_sync(cancellable.get(), &error));
        if (!owned)
            return tell({.state = State::failed, .problem = messageOf(error)});
        registry = owned.get();
        if (!knowsSources())
            return tell(isServiceKnown(bus)
                            ? News{.state = State::failed, .problem = "it told of no calendars"}
                            : News{.state = State::absent,
                                   .problem = "Evolution Data Server is not installed"});
        tellSources();
        listen();
        // The loop's end is a task of the loop, so that an early one is not missed.
        g_main_loop_run(loop.get());
        g_signal_handlers_disconnect_by_data(registry, this);
        registry = nullptr;
    }

    /// The service has built-in sources, and the library takes a service that does not exist for
    /// one without any.
    [[nodiscard]] bool knowsSources() const {
        auto* const list = e_source_registry_list_sources(registry, nullptr);
        const bool known = list != nullptr;
        g_list_free_full(list, g_object_unref);
        return known;
    }

    /// Whether the service runs on the bus, or could be started there.
    [[nodiscard]] bool isServiceKnown(GDBusConnection* bus) const {
        constexpr std::string_view service = "org.gnome.evolution.dataserver.Sources5";
        constexpr int patience = 5000; // ms
        for (const auto* const list : {"ListNames", "ListActivatableNames"}) {
            const GVariantPtr reply(g_dbus_connection_call_sync(
                bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", list,
                nullptr, G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, patience,
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
            g_signal_connect(registry, signal, G_CALLBACK(note), this);
    }

    /// A source that changes does so in many steps: they are told of as one.
    void noteChange() {
        if (std::exchange(isNoted, true))
            return;
        invoke([](Worker& self) {
            self.isNoted = false;
            if (self.registry)
                self.tellSources();
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

    /// Later, on the thread. The context belongs to this, so the task must not keep this alive.
    void invoke(void (*step)(Worker&)) {
        postTo(context.get(), G_PRIORITY_LOW, [weak = weak_from_this(), step] {
            if (const auto self = weak.lock())
                step(*self);
        });
    }

    const Report report;
    const std::unique_ptr<GMainContext, ContextRelease> context;
    const GMainLoopPtr loop;
    const GObjectPtr<GCancellable> cancellable;
    ESourceRegistry* registry = nullptr;
    bool isNoted = false;
};

EdsRegistry::EdsRegistry(Task onChange_, Task onAnswer_)
    : onChange(std::move(onChange_)), onAnswer(std::move(onAnswer_)) {}

EdsRegistry::~EdsRegistry() {
    if (worker)
        worker->stop();
}

void EdsRegistry::start() {
    if (worker)
        return;
    worker = std::make_shared<Worker>(lifetime.guard([this](News news) { take(std::move(news)); }));
    worker->start();
}

void EdsRegistry::take(News news) {
    if (news.state != State::present)
        worker.reset(); // its thread has ended
    if (std::exchange(present, std::move(news)) != present)
        onChange();
    onAnswer();
}

} // namespace quorva
