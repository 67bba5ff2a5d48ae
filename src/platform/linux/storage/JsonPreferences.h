// Preferences in one JSON file. A worker writes the changes; those that come while it writes are
// stored together. Changes that other programs make to the file are adopted. A file that cannot be
// read is set aside, never lost.
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
    /// The path of the user's preferences, below XDG_CONFIG_HOME.
    [[nodiscard]] static std::filesystem::path standardPath();

    /// Reads the file and waits for the disk, this once. A file that cannot be read or parsed is
    /// set aside and logged, and the preferences are empty. If it cannot be set aside either,
    /// nothing is stored until it can. The services must outlive the preferences, which alone use
    /// `file`.
    JsonPreferences(MainLoop& loop, Log& log, WholeFile& file);

    /// Stores pending changes and waits for the disk.
    ~JsonPreferences() override;

    JsonPreferences(const JsonPreferences&) = delete;
    JsonPreferences& operator=(const JsonPreferences&) = delete;

    [[nodiscard]] std::optional<PreferenceValue> value(std::string_view key) const override;
    void set(std::string_view key, PreferenceValue value, Task onDurable) override;
    void remove(std::string_view key, Task onDurable) override;

private:
    using Revision = std::uint64_t;
    /// New values by key; nothing for a removed key.
    using Changes = std::map<std::string, std::optional<PreferenceValue>, std::less<>>;

    /// The changes to store, up to one revision.
    struct Batch {
        Changes changes;
        std::vector<Task> onDurable;
        Revision revision = 0;
    };

    // Main thread.
    void change(std::string_view key, std::optional<PreferenceValue> value, Task onDurable);
    void wakeWriter();
    void adopt(const Changes& edits, Revision revision);

    // The worker, and the constructor before the worker starts.
    void write();
    [[nodiscard]] Batch popWaiting();
    void putBack(Batch batch);
    void deliver(std::vector<Task> onDurable, Changes edits, Revision revision);
    [[nodiscard]] std::string store(const Changes& changes, Changes& edits);
    [[nodiscard]] std::string follow(Changes& edits);
    [[nodiscard]] std::string setAside(const std::string& why);
    void report(const std::string& failure);

    MainLoop& loop;
    Log& log;
    WholeFile& file;

    // Main thread: the values that `value` returns, and the revision of each key's last change
    // here.
    PreferenceMap values;
    std::map<std::string, Revision, std::less<>> revisions;

    std::mutex mutex; // guards the two below
    Batch waiting;
    bool isWriterAwake = false;

    // Worker: the file's content, as last read or still to be stored.
    PreferencesDocument document;
    std::optional<FileStamp> known;
    bool isStored = true;
    bool isFailing = false;

    Lifetime lifetime;
    std::function<void(const std::vector<Task>&, const Changes&, Revision)> receive;
    SerialQueue writer{1}; // last: its task uses the members above
};

} // namespace quorva
