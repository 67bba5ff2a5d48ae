#include "catalogue/RecordJson.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>

namespace quorva {
namespace {

using Json = nlohmann::ordered_json;

constexpr Time referenceDate = std::chrono::sys_days{std::chrono::January / 1 / 2001};

double toNumber(Time time) {
    return Seconds(time - referenceDate).count();
}

bool read(const Json& value, bool& out) {
    if (!value.is_boolean())
        return false;
    out = value.get<bool>();
    return true;
}

bool read(const Json& value, int& out) {
    if (!value.is_number())
        return false;
    const auto number = value.get<double>();
    if (number != std::floor(number) || std::abs(number) > std::numeric_limits<int>::max())
        return false;
    out = static_cast<int>(number);
    return true;
}

bool read(const Json& value, std::string& out) {
    if (!value.is_string())
        return false;
    out = value.get<std::string>();
    return true;
}

bool read(const Json& value, Time& out) {
    if (!value.is_number())
        return false;
    const Seconds sinceReference(value.get<double>());
    constexpr Seconds farthest = std::chrono::years(200); // inside what Time can hold
    if (!(abs(sinceReference) < farthest))
        return false;
    out = referenceDate + std::chrono::round<Time::duration>(sinceReference);
    return true;
}

bool read(const Json& value, DetectionSource& out) {
    std::string text;
    if (!read(value, text))
        return false;
    const auto source = fromRawValue<DetectionSource>(text);
    out = source.value_or(out);
    return source.has_value();
}

template <typename Field>
bool require(const Json& object, const char* key, Field& out) {
    const auto found = object.find(key);
    return found != object.end() && read(*found, out);
}

/// A missing key and null both mean "absent"; a value of another type is an error.
template <typename Field>
bool allow(const Json& object, const char* key, std::optional<Field>& out) {
    const auto found = object.find(key);
    if (found == object.end() || found->is_null())
        return true;
    return read(*found, out.emplace());
}

} // namespace

Json toJson(const DetectionEvent& event) {
    Json json{{"botName", event.botName},
              {"category", event.category},
              {"confidence", event.confidence},
              {"method", event.method},
              {"detectedAt", toNumber(event.detectedAt)},
              {"dismissed", event.dismissed}};
    if (event.source)
        json["source"] = *event.source;
    if (event.eventStartDate)
        json["eventStartDate"] = toNumber(*event.eventStartDate);
    return json;
}

Json toJson(const ObjectionRecord& record) {
    Json json{{"id", record.id},
              {"timestamp", toNumber(record.timestamp)},
              {"templateUsed", record.templateUsed}};
    if (record.botName)
        json["botName"] = *record.botName;
    if (record.meetingContext)
        json["meetingContext"] = *record.meetingContext;
    if (record.source)
        json["source"] = rawValue(*record.source);
    json["copiedToClipboard"] = record.copiedToClipboard;
    return json;
}

std::optional<DetectionEvent> detectionEventFromJson(const Json& json) {
    DetectionEvent event;
    const bool complete =
        json.is_object() && require(json, "botName", event.botName) &&
        require(json, "category", event.category) &&
        require(json, "confidence", event.confidence) && require(json, "method", event.method) &&
        require(json, "detectedAt", event.detectedAt) &&
        require(json, "dismissed", event.dismissed) && allow(json, "source", event.source) &&
        allow(json, "eventStartDate", event.eventStartDate);
    return complete ? std::optional(std::move(event)) : std::nullopt;
}

std::optional<ObjectionRecord> objectionRecordFromJson(const Json& json) {
    ObjectionRecord record;
    const bool complete = json.is_object() && require(json, "id", record.id) &&
                          require(json, "timestamp", record.timestamp) &&
                          require(json, "templateUsed", record.templateUsed) &&
                          allow(json, "botName", record.botName) &&
                          allow(json, "meetingContext", record.meetingContext) &&
                          allow(json, "source", record.source) &&
                          require(json, "copiedToClipboard", record.copiedToClipboard);
    return complete ? std::optional(std::move(record)) : std::nullopt;
}

} // namespace quorva
