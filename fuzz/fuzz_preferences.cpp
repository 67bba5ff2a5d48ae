// Parses any bytes as a preferences file. They are refused, or all of their content survives being
// written and read again.
#include "Expect.h"
#include "platform/linux/storage/PreferencesFormat.h"

#include <cstddef>
#include <cstdint>

using quorva::PreferencesDocument;

namespace {

PreferencesDocument parsed(const std::string& bytes) {
    std::string fault;
    auto document = PreferencesDocument::parse(bytes, fault);
    expect(document.has_value());
    return *document;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string fault;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto document = PreferencesDocument::parse(bytes, fault);
    expect(document.has_value() == fault.empty());
    if (!document)
        return 0;

    const auto written = document->serialised();
    auto again = parsed(written);
    expect(again.values() == document->values());
    expect(again.serialised() == written);

    // Setting the same values in an empty document yields the same values.
    PreferencesDocument copy;
    for (const auto& [key, value] : document->values()) {
        expect(!again.apply(key, value));
        expect(copy.apply(key, value));
        expect(again.apply(key, std::nullopt));
    }
    expect(parsed(copy.serialised()).values() == document->values());
    expect(again.values().empty());
    return 0;
}
