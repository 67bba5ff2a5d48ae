#include "platform/linux/storage/JsonPreferences.h"

#include <fmt/format.h>
#include <glib.h>

#include <iterator>

namespace quorva {
namespace {

using Changes = std::map<std::string, std::optional<PreferenceValue>, std::less<>>;

/// The changes that turn one set of values into the other.
Changes difference(const PreferenceMap& before, const PreferenceMap& after) {
    Changes edits;
    for (const auto& [key, value] : before)
        if (!after.contains(key))
            edits.emplace(key, std::nullopt);
    for (const auto& [key, value] : after) {
        const auto old = before.find(key);
        if (old == before.end() || old->second != value)
            edits.emplace(key, value);
    }
    return edits;
}

} // namespace

std::filesystem::path JsonPreferences::standardPath() {
    return std::filesystem::path(g_get_user_config_dir()) / "quorva" / "preferences.json";
}

JsonPreferences::JsonPreferences(MainLoop& loop_, Log& log_, WholeFile& file_)
    : loop(loop_),
      log(log_),
      file(file_),
      receive(lifetime.guard(
          [this](const std::vector<Task>& onDurable, const Changes& edits, Revision revision) {
              adopt(edits, revision);
              for (const auto& task : onDurable)
                  task();
          })) {
    Changes everything;
    report(follow(everything));
    values = document.values();
}

JsonPreferences::~JsonPreferences() {
    bool isComplete = true;
    {
        const std::lock_guard lock(mutex);
        isComplete = waiting.changes.empty();
    }
    if (!isComplete)
        wakeWriter();
}

std::optional<PreferenceValue> JsonPreferences::value(std::string_view key) const {
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional(found->second);
}

void JsonPreferences::set(std::string_view key, PreferenceValue value, Task onDurable) {
    const auto* const unknown = std::get_if<UnknownPreference>(&value);
    if (unknown == nullptr || !unknown->json.empty())
        change(key, std::move(value), std::move(onDurable));
}

void JsonPreferences::remove(std::string_view key, Task onDurable) {
    change(key, std::nullopt, std::move(onDurable));
}

void JsonPreferences::change(std::string_view key, std::optional<PreferenceValue> value,
                             Task onDurable) {
    const std::string name(key);
    if (value)
        values.insert_or_assign(name, *value);
    else
        values.erase(name);
    {
        const std::lock_guard lock(mutex);
        revisions[name] = ++waiting.revision;
        waiting.changes.insert_or_assign(name, std::move(value));
        if (onDurable)
            waiting.onDurable.push_back(std::move(onDurable));
    }
    wakeWriter();
}

void JsonPreferences::wakeWriter() {
    const std::lock_guard lock(mutex);
    if (!std::exchange(isWriterAwake, true))
        (void)writer.post([this] { write(); });
}

void JsonPreferences::adopt(const Changes& edits, Revision revision) {
    for (const auto& [key, value] : edits) {
        const auto changed = revisions.find(key);
        if (changed != revisions.end() && changed->second > revision)
            continue; // changed here since
        if (value)
            values.insert_or_assign(key, *value);
        else
            values.erase(key);
    }
}

void JsonPreferences::write() {
    auto batch = popWaiting();
    Changes edits;
    const auto failure = store(batch.changes, edits);
    report(failure);
    std::vector<Task> onDurable;
    if (failure.empty())
        onDurable.swap(batch.onDurable);
    const auto revision = batch.revision;
    if (!failure.empty())
        putBack(std::move(batch));
    if (!edits.empty() || !onDurable.empty())
        deliver(std::move(onDurable), std::move(edits), revision);
}

JsonPreferences::Batch JsonPreferences::popWaiting() {
    const std::lock_guard lock(mutex);
    isWriterAwake = false;
    Batch batch{.changes = {}, .onDurable = {}, .revision = waiting.revision};
    batch.changes.swap(waiting.changes);
    batch.onDurable.swap(waiting.onDurable);
    return batch;
}

/// Returns a batch that could not be stored to the queue, to be stored with the next change. Newer
/// changes of the same keys win.
void JsonPreferences::putBack(Batch batch) {
    const std::lock_guard lock(mutex);
    waiting.changes.merge(batch.changes);
    waiting.onDurable.insert(waiting.onDurable.begin(),
                             std::make_move_iterator(batch.onDurable.begin()),
                             std::make_move_iterator(batch.onDurable.end()));
}

void JsonPreferences::deliver(std::vector<Task> onDurable, Changes edits, Revision revision) {
    loop.post([receive = receive, onDurable = std::move(onDurable), edits = std::move(edits),
               revision] { receive(onDurable, edits, revision); });
}

/// Stores the changes. `edits` receives the changes that others made to the file. Returns the
/// reason of a failure; empty on success.
std::string JsonPreferences::store(const Changes& changes, Changes& edits) {
    auto failure = follow(edits);
    for (const auto& [key, value] : changes)
        edits.erase(key); // our own change wins
    if (!failure.empty())
        return failure;
    for (const auto& [key, value] : changes)
        if (document.apply(key, value))
            isStored = false;
    if (isStored)
        return {};
    std::error_code error;
    known = file.replace(document.serialised(), error);
    isStored = !error;
    return error ? error.message() : std::string();
}

/// Reads the file if it has changed; `edits` receives the differences. Returns why the file could
/// be neither read nor set aside, in which case it must not be overwritten; empty on success.
std::string JsonPreferences::follow(Changes& edits) {
    std::error_code error;
    const auto now = file.stamp(error);
    if (!error && now == known)
        return {};
    if (!error && !now) { // it was deleted: write all of it again
        known.reset();
        isStored = false;
        return {};
    }
    const auto content = file.read(error);
    if (!content)
        return error ? setAside("it can't be read: " + error.message()) : std::string();
    std::string fault;
    auto parsed = PreferencesDocument::parse(content->bytes, fault);
    if (!parsed)
        return setAside(fault);
    edits = difference(document.values(), parsed->values());
    document = std::move(*parsed);
    known = content->stamp;
    return {};
}

std::string JsonPreferences::setAside(const std::string& why) {
    std::error_code error;
    const auto aside = file.setAside(loop.now(), error);
    if (!aside)
        return fmt::format("{}; nor can it be set aside: {}", why, error.message());
    log.error(Printable::format("The preferences in {} can't be used, {}. They were kept as {}",
                                file.path().string(), why, aside->filename().string()),
              logCategory::appState);
    known.reset();
    isStored = false;
    return {};
}

/// Logs when a failure begins and when it ends.
void JsonPreferences::report(const std::string& failure) {
    if (!failure.empty() && !isFailing)
        log.error(
            Printable::format("The preferences can't be stored in {}, {}. They are kept in memory",
                              file.path().string(), failure),
            logCategory::appState);
    else if (failure.empty() && isFailing)
        log.notice("The preferences can be stored again", logCategory::appState);
    isFailing = !failure.empty();
}

} // namespace quorva
