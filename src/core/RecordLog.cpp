#include "core/RecordLog.h"

#include "catalogue/RecordJson.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>

namespace quorva {
namespace {

using Json = nlohmann::ordered_json;

template <typename Record>
std::optional<Record> recordFromJson(const Json& json);

template <>
std::optional<DetectionEvent> recordFromJson(const Json& json) {
    return detectionEventFromJson(json);
}

template <>
std::optional<ObjectionRecord> recordFromJson(const Json& json) {
    return objectionRecordFromJson(json);
}

/// One line of JSON. Texts from elsewhere may hold anything: what is not UTF-8 is replaced.
template <typename Record>
std::string encode(const Record& record) {
    return toJson(record).dump(-1, ' ', false, Json::error_handler_t::replace);
}

template <typename Items>
void dropOldest(Items& items, const RecordLogShape& shape) {
    if (items.size() <= shape.most)
        return;
    const auto surplus = static_cast<std::ptrdiff_t>(items.size() - shape.most);
    if (shape.isNewestFirst)
        items.erase(items.end() - surplus, items.end());
    else
        items.erase(items.begin(), items.begin() + surplus);
}

} // namespace

template <typename Record>
RecordLog<Record>::RecordLog(const RecordLogShape& shape_, MainLoop& loop_,
                             Preferences& preferences_, Log& log_)
    : shape(shape_), loop(loop_), preferences(preferences_), log(log_) {}

template <typename Record>
void RecordLog<Record>::load() {
    const auto stored = preferences.value(shape.key);
    if (!stored)
        return;
    const auto* const data = std::get_if<PreferenceData>(&*stored);
    const auto list = data ? Json::parse(data->bytes, nullptr, false) : Json();
    if (!list.is_array())
        return setAside(*stored, 0);

    std::vector<Record> read;
    std::size_t failed = 0;
    for (const auto& item : list) {
        if (auto record = recordFromJson<Record>(item))
            read.push_back(std::move(*record));
        else
            ++failed;
    }
    if (failed > 0)
        setAside(*stored, failed);
    dropOldest(read, shape);
    encoded.clear();
    for (const auto& record : read)
        encoded.push_back(encode(record));
    records = std::move(read);
}

template <typename Record>
void RecordLog<Record>::add(Record record, Task onDurable) {
    auto next = *records;
    encoded.insert(shape.isNewestFirst ? encoded.begin() : encoded.end(), encode(record));
    next.insert(shape.isNewestFirst ? next.begin() : next.end(), std::move(record));
    dropOldest(encoded, shape);
    dropOldest(next, shape);
    records = std::move(next);
    store(std::move(onDurable));
}

/// Copies what is stored to a key of its own, where no later change overwrites it. What is stored
/// stays as it is until something is added, so the next start finds it again, and the copy too.
template <typename Record>
void RecordLog<Record>::setAside(const PreferenceValue& stored, std::size_t failed) {
    const auto newest = fmt::format("{}.unreadable", shape.key);
    auto place = preferences.read<std::string>(newest).value.value_or("");
    if (place.empty() || preferences.value(place) != stored) {
        place = fmt::format("{}-{}", newest, iso8601Seconds(loop.now()));
        preferences.set(place, stored);
        preferences.set(newest, place);
    }
    log.error(failed > 0
                  ? Printable::format("{} entries of {} can't be read; all of it was copied to {}",
                                      failed, shape.key, place)
                  : Printable::format("{} can't be read; it was copied to {}", shape.key, place),
              logCategory::appState);
}

template <typename Record>
void RecordLog<Record>::store(Task onDurable) {
    preferences.set(shape.key, PreferenceData{fmt::format("[{}]", fmt::join(encoded, ","))},
                    std::move(onDurable));
}

template class RecordLog<DetectionEvent>;
template class RecordLog<ObjectionRecord>;

} // namespace quorva
