// A computer's processes and applications in memory.
#pragma once

#include "platform/Applications.h"
#include "platform/ProcessTable.h"

#include <map>

namespace quorva {

class FakeProcessTable final : public ProcessTable {
public:
    std::map<ProcessIdentifier, Executable> processes;
    bool canBeListed = true;

    void run(ProcessIdentifier process, std::string path) {
        processes[process] = {Executable::Status::read, std::move(path)};
    }
    /// Ends a process and tells those who follow it.
    void end(ProcessIdentifier process) {
        processes.erase(process);
        exits[process].call();
    }

    [[nodiscard]] std::optional<std::vector<ProcessIdentifier>> processIdentifiers() override {
        if (!canBeListed)
            return std::nullopt;
        std::vector<ProcessIdentifier> identifiers;
        for (const auto& [identifier, executable] : processes)
            identifiers.push_back(identifier);
        return identifiers;
    }
    [[nodiscard]] Executable executable(ProcessIdentifier process) override {
        const auto found = processes.find(process);
        return found == processes.end() ? Executable{} : found->second;
    }
    [[nodiscard]] Subscription onExit(ProcessIdentifier process, Task callback) override {
        return processes.contains(process) ? exits[process].add(std::move(callback))
                                           : Subscription();
    }

private:
    std::map<ProcessIdentifier, CallbackList<>> exits;
};

class FakeApplications final : public Applications {
public:
    std::vector<RunningApplication> running;
    std::optional<std::string> own = "com.veltran.QuorvaApp";
    bool ready = true;
    CallbackList<> launches;
    CallbackList<> quits;
    CallbackList<> readies;

    /// What is installed has been read.
    void getReady() {
        ready = true;
        readies.call();
        launches.call();
    }

    [[nodiscard]] std::vector<RunningApplication> runningApplications() override {
        return ready ? running : std::vector<RunningApplication>();
    }
    [[nodiscard]] bool isReady() const override { return ready; }
    [[nodiscard]] Subscription onReady(Task callback) override {
        return readies.add(std::move(callback));
    }
    [[nodiscard]] std::optional<std::string> ownBundleIdentifier() const override { return own; }
    [[nodiscard]] Subscription onLaunch(Task callback) override {
        return launches.add(std::move(callback));
    }
    [[nodiscard]] Subscription onQuit(Task callback) override {
        return quits.add(std::move(callback));
    }
};

} // namespace quorva
