// Any bytes in place of a package's identifier: only that of this program has a version, which is
// text.
#include "platform/linux/PackageKitUpdates.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace quorva;

namespace {

void expect(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::string_view own = "quorva;";
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto version = PackageKitUpdates::versionOf(bytes);
    const bool isOwn =
        bytes.starts_with(own) && bytes.size() > own.size() && bytes[own.size()] != ';';
    expect(version.has_value() == isOwn);
    if (!version)
        return 0;
    expect(!version->empty() && version->find(';') == std::string::npos);
    expect(g_utf8_validate_len(version->data(), version->size(), nullptr) != FALSE);
    return 0;
}
