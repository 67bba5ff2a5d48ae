// Any bytes in place of a text that is cut for people: what is left is its beginning, of so many
// characters as people count them, and cut nowhere within one.
#include "Expect.h"
#include "base/Text.h"
#include "sources/FindingTexts.h"

#include <unicode/ubrk.h>
#include <unicode/utext.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>

using namespace quorva;

namespace {

/// Where ICU says that characters end.
std::set<std::size_t> boundariesOf(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UText, decltype(&utext_close)> view(
        utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status),
        &utext_close);
    const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> breaks(
        ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status), &ubrk_close);
    ubrk_setUText(breaks.get(), view.get(), &status);
    expect(U_SUCCESS(status) != 0);
    std::set<std::size_t> boundaries;
    for (auto at = ubrk_first(breaks.get()); at != UBRK_DONE; at = ubrk_next(breaks.get()))
        boundaries.insert(static_cast<std::size_t>(at));
    return boundaries;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto boundaries = boundariesOf(text);
    const auto count = characterCount(text);
    expect(text.empty() ? count == 0 : count + 1 == boundaries.size());
    for (const std::size_t most :
         {std::size_t{0}, std::size_t{1}, std::size_t{5}, std::size_t{100}}) {
        const auto first = firstCharacters(text, most);
        expect(text.starts_with(first) && (first.empty() || first.data() == text.data()));
        expect(boundaries.contains(first.size()));
        expect(characterCount(first) == std::min(most, count));
    }

    const auto shown = truncatedForNotification(text);
    constexpr std::size_t mostCharacters = 100;
    expect(count <= mostCharacters
               ? shown == text
               : shown == std::string(firstCharacters(text, mostCharacters)) + "...");
    return 0;
}
