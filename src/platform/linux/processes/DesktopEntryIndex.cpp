#include "platform/linux/processes/DesktopEntryIndex.h"

#include <array>

namespace quorva {
namespace {

/// Folders in which each vendor has one of its own.
constexpr std::array vendorRoots{
    std::string_view("/opt/"),
    std::string_view("/usr/lib/"),
    std::string_view("/usr/local/lib/"),
    std::string_view("/usr/share/"),
};

/// The folder that belongs to a program's product alone, with a "/" at its end; empty when the
/// program lies among others.
std::string_view ownFolderOf(std::string_view program) {
    for (const auto root : vendorRoots) {
        if (!program.starts_with(root))
            continue;
        auto folder = program.substr(0, program.rfind('/') + 1);
        for (const std::string_view shared : {"/bin/", "/sbin/"})
            if (folder.ends_with(shared))
                folder.remove_suffix(shared.size() - 1);
        const bool isCommon = folder.size() <= root.size() || folder.ends_with("-linux-gnu/");
        return isCommon ? std::string_view{} : folder;
    }
    return {};
}

} // namespace

DesktopEntryIndex::DesktopEntryIndex(std::vector<InstalledEntry> entries_)
    : installed(std::move(entries_)) {
    for (const auto& [entry, program] : installed) {
        ids.emplace(entry.id, &entry);
        if (!program || entry.isHidden)
            continue;
        const Claim claimed{&entry, program->isAlone};
        claim(programs, program->path, claimed);
        if (const auto folder = ownFolderOf(program->path); !folder.empty())
            claim(ownFolders, std::string(folder), claimed);
    }
}

void DesktopEntryIndex::claim(Claims& claims, std::string key, const Claim& next) {
    const auto [at, isNew] = claims.try_emplace(std::move(key), next);
    if (!isNew && next.isAlone && !at->second.isAlone)
        at->second = next;
}

const DesktopEntry* DesktopEntryIndex::byId(std::string_view id) const {
    const auto found = ids.find(id);
    return found == ids.end() || found->second->isHidden ? nullptr : found->second;
}

const DesktopEntry* DesktopEntryIndex::bySnap(std::string_view snap) const {
    const auto prefix = std::string(snap) + "_";
    if (const auto* const same = byId(prefix + std::string(snap)))
        return same;
    const auto first = ids.lower_bound(prefix);
    const bool isOfSnap = first != ids.end() && first->first.starts_with(prefix);
    return isOfSnap && !first->second->isHidden ? first->second : nullptr;
}

const DesktopEntry* DesktopEntryIndex::byProgram(std::string_view program) const {
    if (const auto exact = programs.find(program); exact != programs.end())
        return exact->second.entry;
    if (ownFolderOf(program).empty())
        return nullptr;
    for (auto folder = program; !folder.empty(); folder.remove_suffix(1)) {
        folder = folder.substr(0, folder.rfind('/') + 1);
        if (folder.empty())
            break;
        if (const auto owner = ownFolders.find(folder); owner != ownFolders.end())
            return owner->second.entry;
    }
    return nullptr;
}

} // namespace quorva
