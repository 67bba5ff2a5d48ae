// Feeds any bytes to the decoders of replies and signals on the accessibility bus. Decoded values
// stay within the limits, and a message made from a value is read back as the same value.
#include "Expect.h"
#include "platform/linux/accessibility/AtspiConnection.h"
#include "platform/linux/accessibility/AtspiProtocol.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <sys/socket.h>

using namespace quorva;

namespace {

constexpr std::array expectedTypes{
    "(u)", "(s)", "(v)", "(a{sv})", "(a(so))", "((so))", "(au)", "(siiva{sv})", "(siiv(so))",
};

void expectShortText(const std::string& text) {
    expect(text.size() <= 3 * maxAtspiText); // replacement characters take three bytes
    expectText(text);
}

void decode(GVariant* value) {
    constexpr std::size_t most = 5;
    (void)decodeNumber(value);
    (void)decodeCountProperty(value);
    (void)decodeTruth(value);
    (void)hasState(value, AtspiState::showing);
    expectShortText(decodeText(value).value_or(""));
    expectShortText(decodeTextProperty(value).value_or(""));
    const auto details = decodeDetails(value).value_or(AtspiDetails{});
    expectShortText(details.name);
    expectShortText(details.description);
    expectShortText(details.help);
    const auto references = decodeReferences(value, ":1.1", most);
    expect(!references || references->size() <= most);
    if (const auto reference = decodeReference(value, ":1.1"))
        expect(g_dbus_is_name(reference->bus.c_str()) != FALSE &&
               g_variant_is_object_path(reference->path.c_str()) != FALSE);
    for (const char* const member : {"PropertyChange", "StateChanged", "TextChanged"}) {
        const auto event = decodeEvent("/e", "org.a11y.atspi.Event.Object", member, value);
        expect(g_variant_is_object_path(event.path.c_str()) != FALSE);
    }
}

/// A connection without a peer, for which messages can be made.
sd_bus* aBus() {
    static sd_bus* const bus = [] {
        std::array<int, 2> ends{};
        sd_bus* made = nullptr;
        expect(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0);
        expect(sd_bus_new(&made) >= 0 && sd_bus_set_fd(made, ends[0], ends[0]) >= 0 &&
               sd_bus_start(made) >= 0);
        return made;
    }();
    return bus;
}

bool append(sd_bus_message* message, GVariant* value);

bool appendChildren(sd_bus_message* message, GVariant* value) {
    for (gsize i = 0; i < g_variant_n_children(value); ++i)
        if (!append(message, GVariantPtr(g_variant_get_child_value(value, i)).get()))
            return false;
    return true;
}

/// False where the value can't be sent.
bool append(sd_bus_message* message, GVariant* value) {
    const std::string type = g_variant_get_type_string(value);
    switch (type.front()) {
    case 's':
    case 'o':
    case 'g':
        return sd_bus_message_append_basic(message, type.front(),
                                           g_variant_get_string(value, nullptr)) >= 0;
    case 'b': {
        const int truth = g_variant_get_boolean(value);
        return sd_bus_message_append_basic(message, 'b', &truth) >= 0;
    }
    case 'y':
    case 'n':
    case 'q':
    case 'i':
    case 'u':
    case 'x':
    case 't':
    case 'd':
        return sd_bus_message_append_basic(message, type.front(), g_variant_get_data(value)) >= 0;
    case 'v': {
        const GVariantPtr inner(g_variant_get_variant(value));
        return sd_bus_message_open_container(message, 'v',
                                             g_variant_get_type_string(inner.get())) >= 0 &&
               append(message, inner.get()) && sd_bus_message_close_container(message) >= 0;
    }
    case 'a':
        return sd_bus_message_open_container(message, 'a', type.substr(1).c_str()) >= 0 &&
               appendChildren(message, value) && sd_bus_message_close_container(message) >= 0;
    case '(':
    case '{': {
        const char kind = type.front() == '(' ? 'r' : 'e';
        return sd_bus_message_open_container(message, kind,
                                             type.substr(1, type.size() - 2).c_str()) >= 0 &&
               appendChildren(message, value) && sd_bus_message_close_container(message) >= 0;
    }
    default:
        return false;
    }
}

/// GLib may hold the same value in different bytes, for example arrays that are all empty.
bool isSame(GVariant* one, GVariant* other) {
    const auto written = [](GVariant* value) { return GCharsPtr(g_variant_print(value, TRUE)); };
    return g_variant_equal(one, other) != FALSE ||
           std::string_view(written(one).get()) == written(other).get();
}

/// Makes a message of the tuple, and reads it as replies are read.
void sendAndRead(GVariant* tuple) {
    sd_bus_message* made = nullptr;
    expect(sd_bus_message_new_signal(aBus(), &made, "/e", "e.e", "E") >= 0);
    const std::unique_ptr<sd_bus_message, Release<sd_bus_message_unref>> message(made);
    if (!appendChildren(made, tuple) || sd_bus_message_seal(made, 1, 0) < 0)
        return;
    const auto body = bodyOf(made);
    if (body) {
        expect(isSame(body.get(), tuple));
        decode(body.get());
    }
}

void decodeAs(const char* type, const std::uint8_t* data, std::size_t size) {
    GBytes* const bytes = g_bytes_new(data, size);
    const GVariantPtr untrusted(
        g_variant_ref_sink(g_variant_new_from_bytes(G_VARIANT_TYPE(type), bytes, FALSE)));
    g_bytes_unref(bytes);
    decode(untrusted.get());
    const GVariantPtr normal(g_variant_get_normal_form(untrusted.get()));
    if (g_variant_is_of_type(normal.get(), G_VARIANT_TYPE_TUPLE) != FALSE)
        sendAndRead(normal.get());
}

/// A value in GVariant's text format.
void decodeWritten(const char* text) {
    GError* error = nullptr;
    const GVariantPtr value(g_variant_parse(nullptr, text, nullptr, nullptr, &error));
    g_clear_error(&error);
    if (!value)
        return;
    decode(value.get());
    if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_TUPLE) != FALSE)
        sendAndRead(value.get());
}

void decodeMessage(const std::uint8_t* data, std::size_t size) {
    std::string blob(reinterpret_cast<const char*>(data), size);
    const GObjectPtr<GDBusMessage> message(
        g_dbus_message_new_from_blob(reinterpret_cast<guchar*>(blob.data()), blob.size(),
                                     G_DBUS_CAPABILITY_FLAGS_NONE, nullptr));
    if (!message)
        return;
    auto* const body = g_dbus_message_get_body(message.get());
    decode(body);
    if (body != nullptr)
        sendAndRead(body);
}

} // namespace

/// The first byte says what follows: the bytes of a value of an expected type (0-8), a value in
/// text format ('('), a line with a type and the bytes of such a value ('t'), or a message.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string rest(reinterpret_cast<const char*>(data + 1), size - 1);
    if (data[0] < expectedTypes.size()) {
        decodeAs(expectedTypes.at(data[0]), data + 1, size - 1);
    } else if (data[0] == '(') {
        decodeWritten(("(" + rest).c_str());
    } else if (data[0] == 't') {
        const auto type = rest.substr(0, rest.find('\n'));
        if (type.size() < 64 && g_variant_type_string_is_valid(type.c_str()) != FALSE &&
            g_variant_type_is_definite(G_VARIANT_TYPE(type.c_str())) != FALSE &&
            type.size() < rest.size())
            decodeAs(type.c_str(), data + 2 + type.size(), size - 2 - type.size());
    } else {
        decodeMessage(data, size);
    }
    return 0;
}
