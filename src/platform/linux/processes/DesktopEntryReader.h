// Reads the desktop entries from disk, and again only what has changed. Used by one thread at a
// time; its operations wait for the disk.
#pragma once

#include "base/Time.h"
#include "platform/WholeFile.h"
#include "platform/linux/processes/DesktopEntryIndex.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

struct DesktopEntryPlaces {
    std::vector<std::filesystem::path> folders;    ///< of entries; an earlier one's entry wins
    std::vector<std::filesystem::path> searchPath; ///< for commands without a path
};

/// A file or folder that is not used, or not all of it.
struct LeftOutEntry {
    std::filesystem::path path;
    std::string reason;
};

class DesktopEntryReader {
public:
    explicit DesktopEntryReader(DesktopEntryPlaces places);

    struct Reading {
        std::shared_ptr<const DesktopEntryIndex> index; ///< the previous one if nothing has changed
        std::vector<LeftOutEntry> leftOut;
    };

    /// Brings the entries up to date at the time `now`. Folders whose stamp is the same are not
    /// listed again. Every 5 minutes the stamps of all files are compared, because changing a file
    /// in place does not change its folder. Leaves out entries that cannot be read or are larger
    /// than 1 MiB, what lies deeper than 8 folders, and all beyond 10,000 files.
    [[nodiscard]] Reading read(Time now);

private:
    /// A stamp tells later changes only if what it stands for had been at rest for a while.
    struct Seen {
        std::optional<FileStamp> stamp; ///< nothing: it was missing
        bool isSettled = false;

        bool operator==(const Seen&) const = default;
    };
    struct File {
        Seen seen;
        std::optional<DesktopEntry> entry;
        std::string problem; ///< why there is no entry
    };
    struct Folder {
        Seen seen;
        std::vector<std::filesystem::path> contents; ///< entries and folders, by their names
        std::string problem;                         ///< why not all of it is known
    };
    struct Pass;

    [[nodiscard]] static Seen look(const std::filesystem::path& path, Time now);
    [[nodiscard]] bool hasChanged(Time now) const;
    void readFolder(const std::filesystem::path& path, const std::string& idPrefix, int depth,
                    Pass& pass);
    [[nodiscard]] static Folder list(const std::filesystem::path& path, const Seen& seen,
                                     Pass& pass);
    void readEntry(const std::filesystem::path& path, const std::string& id, bool isTrusted,
                   Pass& pass);
    [[nodiscard]] std::optional<EntryProgram> installedProgram(const DesktopEntry& entry) const;

    const DesktopEntryPlaces places;
    std::map<std::filesystem::path, Folder> folders;
    std::map<std::filesystem::path, File> files;
    std::optional<Time> lastComparison; ///< of all files' stamps
    Reading last;
};

} // namespace quorva
