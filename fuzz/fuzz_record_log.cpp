// Any value in place of a stored list of records: what can be read of it is there, in the bounds of
// the list, and where anything can't be, all of it is kept under another key. What was read
// survives being stored again together with what comes new.
#include "Expect.h"
#include "core/RecordLog.h"
#include "support/MemoryPreferences.h"
#include "support/RecordingLog.h"
#include "support/VirtualMainLoop.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <tuple>

using namespace quorva;

namespace {

/// A double holds the seconds of a far date to a microsecond.
bool isSameTime(Time one, Time other) {
    return std::chrono::abs(one - other) <= std::chrono::microseconds(2);
}

bool isSameTime(const std::optional<Time>& one, const std::optional<Time>& other) {
    return one && other ? isSameTime(*one, *other) : one == other;
}

/// But for the title, which is never stored.
bool isSame(const DetectionEvent& one, const DetectionEvent& other) {
    const auto texts = [](const DetectionEvent& event) {
        return std::tie(event.botName, event.category, event.confidence, event.method,
                        event.dismissed, event.source);
    };
    return texts(one) == texts(other) && isSameTime(one.detectedAt, other.detectedAt) &&
           isSameTime(one.eventStartDate, other.eventStartDate);
}

bool isSame(const ObjectionRecord& one, const ObjectionRecord& other) {
    const auto texts = [](const ObjectionRecord& record) {
        return std::tie(record.id, record.templateUsed, record.botName, record.meetingContext,
                        record.source, record.copiedToClipboard);
    };
    return texts(one) == texts(other) && isSameTime(one.timestamp, other.timestamp);
}

/// What was kept under the only other key for it, which another one names.
const PreferenceValue* setAside(const MemoryPreferences& preferences, std::string_view key) {
    const auto pointer = std::string(key) + ".unreadable";
    const PreferenceValue* found = nullptr;
    for (const auto& [name, value] : preferences.values) {
        if (name == key || name == pointer)
            continue;
        expect(found == nullptr && name.starts_with(pointer + "-"));
        expect(preferences.values.at(pointer) == PreferenceValue(name));
        found = &value;
    }
    return found;
}

template <typename Record>
void load(const RecordLogShape& shape, const PreferenceValue& stored) {
    VirtualMainLoop loop;
    RecordingLog log;
    MemoryPreferences preferences(loop);
    preferences.values.emplace(shape.key, stored);
    RecordLog<Record> first(shape, loop, preferences, log);
    first.load();
    const auto* const kept = setAside(preferences, shape.key);
    expect(kept == nullptr || *kept == stored);
    expect(log.messages.size() == (kept != nullptr ? 1U : 0U));
    expect(kept != nullptr || std::holds_alternative<PreferenceData>(stored));
    expect(first.records->size() <= shape.most);
    expect(preferences.values.at(std::string(shape.key)) == stored);

    preferences.values.clear();
    first.add(Record{});
    RecordLog<Record> second(shape, loop, preferences, log);
    second.load();
    expect(setAside(preferences, shape.key) == nullptr);
    const auto& before = *first.records;
    const auto& after = *second.records;
    expect(before.size() == after.size() && !after.empty() && after.size() <= shape.most);
    for (std::size_t i = 0; i < after.size(); ++i)
        expect(isSame(before[i], after[i]));
}

PreferenceValue valueOf(std::uint8_t kind, std::string bytes) {
    switch (kind) {
    case 'u':
        return UnknownPreference{bytes.empty() ? "null" : std::move(bytes)};
    case 's':
        return bytes;
    case 'n':
        return static_cast<std::int64_t>(bytes.size());
    default:
        return PreferenceData{std::move(bytes)};
    }
}

} // namespace

/// The first byte says what kind of value the others are.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const auto value =
        valueOf(data[0], std::string(reinterpret_cast<const char*>(data + 1), size - 1));
    load<DetectionEvent>(detectionLogShape, value);
    load<ObjectionRecord>(objectionLogShape, value);
    return 0;
}
