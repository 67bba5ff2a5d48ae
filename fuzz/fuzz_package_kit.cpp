// Any bytes in place of what the package service says: only a package of this program's has a
// version, and what is told to people is text.
#include "Expect.h"
#include "platform/linux/desktop/PackageKitProtocol.h"

#include <cstddef>
#include <cstdint>

using namespace quorva;
using namespace quorva::packageKit;

namespace {

void readIdentifier(std::string_view bytes) {
    constexpr std::string_view own = "quorva;";
    const auto version = versionOf(bytes);
    const bool isOwn =
        bytes.starts_with(own) && bytes.size() > own.size() && bytes[own.size()] != ';';
    expect(version.has_value() == isOwn);
    if (!version)
        return;
    expect(!version->empty() && version->find(';') == std::string::npos);
    expectText(*version);
}

GVariantPtr messageOf(const char* type, std::string_view bytes) {
    GBytes* const copy = g_bytes_new(bytes.data(), bytes.size());
    GVariantPtr message(
        g_variant_ref_sink(g_variant_new_from_bytes(G_VARIANT_TYPE(type), copy, FALSE)));
    g_bytes_unref(copy);
    return message;
}

void readMessage(std::string_view bytes) {
    for (const char* const type : {"(o)", "(uss)", "(us)", "(uu)", "(v)"}) {
        const auto message = messageOf(type, bytes);
        const std::string_view given = type;
        const auto path = decodeTransaction(message.get());
        expect(path.has_value() == (given == "(o)"));
        expect(!path || g_variant_is_object_path(path->c_str()) != FALSE);

        const auto package = decodeSignal("Package", message.get());
        if (const auto* const own = std::get_if<OwnPackage>(&package)) {
            expect(given == "(uss)" && bytes.find("quorva;") != std::string_view::npos);
            expectText(own->version);
        } else {
            expect(std::holds_alternative<std::monostate>(package));
        }
        const auto error = decodeSignal("ErrorCode", message.get());
        const auto* const fault = std::get_if<Fault>(&error);
        expect((fault != nullptr) == (given == "(us)"));
        expectText(fault != nullptr ? fault->text : "");
        const auto finished = decodeSignal("Finished", message.get());
        expect(std::holds_alternative<End>(finished) == (given == "(uu)"));
        expect(std::holds_alternative<std::monostate>(decodeSignal("Changed", message.get())));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    readIdentifier(bytes);
    readMessage(bytes);
    return 0;
}
