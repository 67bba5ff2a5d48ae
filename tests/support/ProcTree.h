// A /proc of a test's own: folders, links and files as proc(5) lays them out.
#pragma once

#include "platform/ProcessTable.h"
#include "support/TemporaryFolder.h"

#include <fmt/format.h>

#include <initializer_list>

namespace quorva {

class ProcTree {
public:
    [[nodiscard]] std::filesystem::path path() const { return folder.path; }

    /// Adds a process; an empty `executable` makes one that has none, as a kernel thread.
    void add(ProcessIdentifier process, const std::string& executable,
             std::initializer_list<std::string_view> arguments = {},
             ProcessIdentifier parent = 1) const {
        const auto home = std::to_string(process);
        write(process, "stat",
              fmt::format("{0} (a) b ) S {1} {0} {0} 0 -1 4194560 1 0 0 0 0 0 0 0 20 0 1 0 {2} 0 0",
                          process, parent, 100 * process));
        std::string commandLine;
        for (const auto argument : arguments)
            commandLine.append(argument).append(1, '\0');
        write(process, "cmdline", commandLine);
        if (!executable.empty())
            std::filesystem::create_symlink(executable, folder.path / home / "exe");
    }

    void write(ProcessIdentifier process, std::string_view file, std::string_view bytes) const {
        folder.write(std::filesystem::path(std::to_string(process)) / file, bytes);
    }

    /// The process now runs another executable, as after exec(2).
    void replaceExecutable(ProcessIdentifier process, const std::string& executable) const {
        const auto link = folder.path / std::to_string(process) / "exe";
        std::filesystem::remove(link);
        std::filesystem::create_symlink(executable, link);
    }

    void remove(ProcessIdentifier process) const {
        std::filesystem::remove_all(folder.path / std::to_string(process));
    }

private:
    TemporaryFolder folder;
};

} // namespace quorva
