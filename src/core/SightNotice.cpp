#include "core/SightNotice.h"

#include "base/Text.h"

namespace quorva {
namespace {

constexpr std::string_view method = "sightLost";
constexpr std::string_view beginning = "Not seen: "; ///< what an older version shows as a name
constexpr std::size_t mostCharacters = 500;

} // namespace

DetectionEvent sightLostEvent(std::string_view text, DetectionSource source, Time now) {
    return {.botName = std::string(beginning) + std::string(firstCharacters(text, mostCharacters)),
            .category = std::string(rawValue(BotCategory::unknown)),
            .method = std::string(method),
            .detectedAt = now,
            .source = std::string(rawValue(source))};
}

std::optional<std::string> sightLostText(const DetectionEvent& event) {
    if (event.method != method || !event.botName.starts_with(beginning))
        return std::nullopt;
    return event.botName.substr(beginning.size());
}

} // namespace quorva
