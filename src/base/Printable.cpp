#include "base/Printable.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace quorva {
namespace {

constexpr uint32_t hidden = U_GC_CC_MASK | U_GC_CF_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK;

/// The text with each hidden character replaced by what `escaped` makes of it.
template <typename Escape>
std::string withoutHidden(std::string_view text, const Escape& escaped) {
    std::string shown;
    shown.reserve(text.size());
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t at = 0; at < length;) {
        const auto start = static_cast<std::size_t>(at);
        UChar32 c = 0;
        U8_NEXT(bytes, at, length, c);
        if (c < 0)
            shown += "\uFFFD";
        else if ((U_GET_GC_MASK(c) & hidden) != 0)
            shown += escaped(c);
        else
            shown += text.substr(start, static_cast<std::size_t>(at) - start);
    }
    return shown;
}

} // namespace

Printable printable(std::string_view text) {
    return Printable(withoutHidden(text, [](UChar32 c) {
        return c == '\n' ? "\\n" : fmt::format("\\u{:04x}", static_cast<uint32_t>(c));
    }));
}

Printable printableJson(std::string_view json) {
    return Printable(withoutHidden(json, [](UChar32 c) {
        return U_IS_BMP(c) ? fmt::format("\\u{:04x}", static_cast<uint32_t>(c))
                           : fmt::format("\\u{:04x}\\u{:04x}", static_cast<uint32_t>(U16_LEAD(c)),
                                         static_cast<uint32_t>(U16_TRAIL(c)));
    }));
}

std::string Printable::safe(std::string_view foreign) {
    if (foreign.size() <= mostBytes)
        return printable(foreign).text;
    auto end = static_cast<int32_t>(mostBytes);
    U8_SET_CP_START(reinterpret_cast<const uint8_t*>(foreign.data()), 0, end);
    return printable(foreign.substr(0, static_cast<std::size_t>(end))).text + "…";
}

} // namespace quorva
