// Preferences in one JSON file. Changes are written by a worker, gathered while it writes. What
// others write to the file meanwhile is taken over; what cannot be read is set aside, never lost.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/SerialQueue.h"
#include "platform/Log.h"
#include "platform/Preferences.h"
#include "platform/WholeFile.h"
#include "platform/linux/storage/PreferencesFormat.h"

#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

class JsonPreferences final : public Preferences {
public:
    /// Where the user's preferences are, below XDG_CONFIG_HOME.
    [[nodiscard]] static std::filesystem::path standardPath();

    /// Reads the file, waiting for the disk this once. A file that cannot be read or parsed is set
    /// aside, the log says so, and there are no preferences; where it cannot be set aside either,
    /// nothing is stored until that has passed. The services must outlive the preferences, and
    /// nobody else uses `file` meanwhile.
    JsonPreferences(MainLoop& loop, Log& log, WholeFile& file);

    /// Writes what is not stored yet, waiting for the disk.
    ~JsonPreferences() override;

    JsonPreferences(const JsonPreferences&) = delete;
    JsonPreferences& operator=(const JsonPreferences&) = delete;

    [[nodiscard]] std::optional<PreferenceValue> value(std::string_view key) const override;
    void set(std::string_view key, PreferenceValue value, Task onDurable) override;
    void remove(std::string_view key, Task onDurable) override;

private:
    using Revision = std::uint64_t;
    /// New values by key; nothing for a key that is removed.
    using Changes = std::map<std::string, std::optional<PreferenceValue>, std::less<>>;

    /// What is to be stored, as of one revision.
    struct Batch {
        Changes changes;
        std::vector<Task> onDurable;
        Revision revision = 0;
    };

    // Main thread.
    void change(std::string_view key, std::optional<PreferenceValue> value, Task onDurable);
    void wakeWriter();
    void takeOver(const Changes& edits, Revision revision);

    // The worker and, before there is one, the constructor.
    void write();
    [[nodiscard]] Batch takeWaiting();
    void putBack(Batch batch);
    void deliver(std::vector<Task> onDurable, Changes edits, Revision revision);
    [[nodiscard]] std::string store(const Changes& changes, Changes& edits);
    [[nodiscard]] std::string follow(Changes& edits);
    [[nodiscard]] std::string setAside(const std::string& why);
    void report(const std::string& failure);

    MainLoop& loop;
    Log& log;
    WholeFile& file;

    // Main thread: what `value` answers, and the revision of each key's last change here.
    PreferenceMap values;
    std::map<std::string, Revision, std::less<>> revisions;

    std::mutex mutex; // guards the two below
    Batch waiting;
    bool isWriterAwake = false;

    // Worker: what the file is known to hold, or is to hold.
    PreferencesDocument document;
    std::optional<FileStamp> known;
    bool isStored = true;
    bool isFailing = false;

    Lifetime lifetime;
    std::function<void(const std::vector<Task>&, const Changes&, Revision)> receive;
    SerialQueue writer{1}; // last: its task uses the members above
};

} // namespace quorva
