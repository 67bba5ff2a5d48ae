#include "platform/linux/processes/ApplicationScopes.h"

#include "platform/linux/glib/ReadFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <memory>

namespace quorva {
namespace {

constexpr int deepest = 8;
constexpr std::size_t mostBytes =
    std::size_t{32} * 1024 * 1024; // enough for all processes of a kernel

using ScopePtr = std::shared_ptr<const ApplicationScopes::Scope>;

void readMembers(const std::filesystem::path& group, const ScopePtr& scope,
                 ApplicationScopes::Members& members) {
    std::error_code ignored; // the group is gone, or is a threaded one
    const auto list = readWholeFile(group / "cgroup.procs", mostBytes, ignored);
    if (!list)
        return;
    const char* at = list->data();
    const char* const end = at + list->size();
    ProcessIdentifier process = 0;
    for (auto read = std::from_chars(at, end, process); read.ec == std::errc{};
         read = std::from_chars(at, end, process)) {
        members.insert_or_assign(process, scope);
        at = std::min(end, read.ptr + 1);
    }
}

/// `scope` is the application of the groups above; null for none.
void readGroup(const std::filesystem::path& group, ScopePtr scope, int depth,
               ApplicationScopes::Members& members) {
    if (auto application = applicationOfUnit(group.filename().string()))
        scope = std::make_shared<const ApplicationScopes::Scope>(
            ApplicationScopes::Scope{group.filename().string(), std::move(*application)});
    else if (group.extension() == ".scope")
        scope = nullptr; // not part of the application, such as a shell in a terminal
    if (scope)
        readMembers(group, scope, members);
    if (depth == deepest)
        return;
    std::error_code error;
    for (std::filesystem::directory_iterator at(group, error), end; !error && at != end;
         at.increment(error))
        if (std::error_code ignored; at->is_directory(ignored) && !at->is_symlink(ignored))
            readGroup(at->path(), scope, depth + 1, members);
}

} // namespace

ApplicationScopes::ApplicationScopes(std::filesystem::path cgroupRoot_, std::uint32_t user_)
    : cgroupRoot(std::move(cgroupRoot_)), user(user_) {}

std::uint32_t ApplicationScopes::ownUser() {
    return ::getuid();
}

ApplicationScopes::Members ApplicationScopes::read() const {
    Members members;
    if (const auto slice = applicationSlice(); !slice.empty())
        readGroup(slice, nullptr, 0, members);
    return members;
}

std::filesystem::path ApplicationScopes::applicationSlice() const {
    const auto slice = fmt::format("user.slice/user-{0}.slice/user@{0}.service/app.slice", user);
    for (const auto* const hierarchy : {"", "unified", "systemd"}) {
        auto path = cgroupRoot / hierarchy / slice;
        if (std::error_code ignored; std::filesystem::is_directory(path, ignored))
            return path;
    }
    return {};
}

} // namespace quorva
