#include "platform/linux/accessibility/AtspiConnection.h"

#include "platform/linux/glib/MainContext.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace quorva {

struct AtspiConnection::Source {
    GSource base;
    AtspiConnection* owner;
    GPollFD poll;
};

namespace {

bool isSocketPath(std::string_view address) {
    constexpr std::string_view start = "unix:path=/";
    constexpr std::string_view rest =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
        "/.-_%";
    constexpr std::string_view guid = ",guid=";
    if (!address.starts_with(start))
        return false;
    address.remove_prefix(start.size());
    const auto path = address.substr(0, address.find(guid));
    if (path.size() < address.size())
        address.remove_prefix(path.size() + guid.size());
    return path.find_first_not_of(rest) == path.npos &&
           address.find_first_not_of(rest) == address.npos;
}

} // namespace

AtspiConnection::AtspiConnection(const std::string& address, Kind kind, Task onLost_)
    : ofKind(kind), onLost(std::move(onLost_)) {
    if (kind == Kind::peer && !isSocketPath(address))
        return;
    sd_bus* made = nullptr;
    if (sd_bus_new(&made) < 0)
        return;
    connection.reset(made);
    if (sd_bus_set_address(made, address.c_str()) < 0 ||
        sd_bus_set_bus_client(made, kind == Kind::bus ? 1 : 0) < 0 || sd_bus_start(made) < 0) {
        connection.reset();
        return;
    }
    static GSourceFuncs functions{prepare, check, dispatch, nullptr, nullptr, nullptr};
    source.reset(g_source_new(&functions, sizeof(Source)));
    auto* const attached = reinterpret_cast<Source*>(source.get());
    attached->owner = this;
    attached->poll = {sd_bus_get_fd(made), 0, 0};
    g_source_add_poll(source.get(), &attached->poll);
    g_source_attach(source.get(), g_main_context_get_thread_default());
}

AtspiConnection::~AtspiConnection() = default;

gboolean AtspiConnection::prepare(GSource* source, gint* timeout) {
    auto* const self = reinterpret_cast<Source*>(source);
    auto* const bus = self->owner->bus();
    const int events = sd_bus_get_events(bus);
    self->poll.events = static_cast<gushort>(std::max(events, 0));
    std::uint64_t until = UINT64_MAX;
    *timeout = -1;
    return events < 0 || (sd_bus_get_timeout(bus, &until) >= 0 && until == 0) ? TRUE : FALSE;
}

gboolean AtspiConnection::check(GSource* source) {
    return reinterpret_cast<Source*>(source)->poll.revents != 0 ? TRUE : FALSE;
}

/// Handles several messages a turn, but leaves time for other sources.
gboolean AtspiConnection::dispatch(GSource* source, GSourceFunc, gpointer) {
    constexpr int batch = 64;
    auto* const owner = reinterpret_cast<Source*>(source)->owner;
    for (int i = 0; i < batch; ++i) {
        const int result = sd_bus_process(owner->bus(), nullptr);
        if (g_source_is_destroyed(source) != FALSE)
            return G_SOURCE_REMOVE;
        if (result < 0) {
            const auto call = owner->onLost; // may destroy the owner
            call();
            return G_SOURCE_REMOVE;
        }
        if (result == 0)
            break;
    }
    return G_SOURCE_CONTINUE;
}

namespace {

constexpr int maxNesting = 16;
constexpr int maxValues = 100'000;

GVariantPtr sunk(GVariant* value) {
    return GVariantPtr(value != nullptr ? g_variant_ref_sink(value) : nullptr);
}

/// How much more may be read of a message.
struct Allowance {
    int depth = maxNesting;
    int& values;
};

GVariantPtr valueOf(sd_bus_message* message, Allowance allowance);

/// Adds the values up to the end of the message, or of the container that has been entered.
bool addRest(sd_bus_message* message, GVariantBuilder* builder, Allowance allowance) {
    while (sd_bus_message_at_end(message, 0) == 0) {
        const auto value = valueOf(message, allowance);
        if (!value)
            return false;
        g_variant_builder_add_value(builder, value.get());
        if (allowance.values < 0)
            break;
    }
    return true;
}

GVariantPtr containerOf(sd_bus_message* message, char type, const char* contents,
                        Allowance allowance) {
    const std::string inner(contents != nullptr ? contents : "");
    const std::string signature = type == 'a'   ? "a" + inner
                                  : type == 'v' ? "v"
                                  : type == 'e' ? "{" + inner + "}"
                                                : "(" + inner + ")";
    const bool isOutermostList = type == SD_BUS_TYPE_ARRAY && allowance.depth == maxNesting;
    if (--allowance.depth < 0 || sd_bus_message_enter_container(message, type, inner.c_str()) <= 0)
        return nullptr;
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE(signature.c_str()));
    const bool isWhole = addRest(message, &builder, allowance);
    const bool isCut = !isWhole && isOutermostList && allowance.values < 0;
    if (!isCut && (!isWhole || sd_bus_message_exit_container(message) < 0)) {
        g_variant_builder_clear(&builder);
        return nullptr;
    }
    return sunk(g_variant_builder_end(&builder));
}

template <typename Number, typename Make>
GVariantPtr numberOf(sd_bus_message* message, char type, Make make) {
    Number number{};
    return sd_bus_message_read_basic(message, type, &number) > 0 ? sunk(make(number)) : nullptr;
}

GVariantPtr textOf(sd_bus_message* message, char type) {
    const char* text = nullptr;
    if (sd_bus_message_read_basic(message, type, &text) <= 0)
        return nullptr;
    if (type == SD_BUS_TYPE_STRING && g_utf8_validate(text, -1, nullptr) != FALSE)
        return sunk(g_variant_new_string(text));
    if (type == SD_BUS_TYPE_OBJECT_PATH && g_variant_is_object_path(text) != FALSE)
        return sunk(g_variant_new_object_path(text));
    if (type == SD_BUS_TYPE_SIGNATURE && g_variant_is_signature(text) != FALSE)
        return sunk(g_variant_new_signature(text));
    return nullptr;
}

GVariantPtr valueOf(sd_bus_message* message, Allowance allowance) {
    char type = 0;
    const char* contents = nullptr;
    if (--allowance.values < 0 || sd_bus_message_peek_type(message, &type, &contents) <= 0)
        return nullptr;
    switch (type) {
    case SD_BUS_TYPE_STRING:
    case SD_BUS_TYPE_OBJECT_PATH:
    case SD_BUS_TYPE_SIGNATURE:
        return textOf(message, type);
    case SD_BUS_TYPE_BOOLEAN:
        return numberOf<int>(message, type, g_variant_new_boolean);
    case SD_BUS_TYPE_BYTE:
        return numberOf<std::uint8_t>(message, type, g_variant_new_byte);
    case SD_BUS_TYPE_INT16:
        return numberOf<std::int16_t>(message, type, g_variant_new_int16);
    case SD_BUS_TYPE_UINT16:
        return numberOf<std::uint16_t>(message, type, g_variant_new_uint16);
    case SD_BUS_TYPE_INT32:
        return numberOf<std::int32_t>(message, type, g_variant_new_int32);
    case SD_BUS_TYPE_UINT32:
        return numberOf<std::uint32_t>(message, type, g_variant_new_uint32);
    case SD_BUS_TYPE_INT64:
        return numberOf<gint64>(message, type, g_variant_new_int64);
    case SD_BUS_TYPE_UINT64:
        return numberOf<guint64>(message, type, g_variant_new_uint64);
    case SD_BUS_TYPE_DOUBLE:
        return numberOf<double>(message, type, g_variant_new_double);
    case SD_BUS_TYPE_ARRAY:
    case SD_BUS_TYPE_DICT_ENTRY:
    case SD_BUS_TYPE_STRUCT:
    case SD_BUS_TYPE_VARIANT:
        return containerOf(message, type, contents, allowance);
    default:
        return nullptr;
    }
}

} // namespace

GVariantPtr bodyOf(sd_bus_message* message) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_TUPLE);
    int values = maxValues;
    if (addRest(message, &builder, {maxNesting, values}))
        return sunk(g_variant_builder_end(&builder));
    g_variant_builder_clear(&builder);
    return nullptr;
}

} // namespace quorva
