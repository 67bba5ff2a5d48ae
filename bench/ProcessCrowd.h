// Real processes for the scan to look at: half of them forks of this program, half of them programs
// of their own under several names, none of which is a product's.
#pragma once

#include "TemporaryFolder.h"

#include <cstddef>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorva::bench {

class ProcessCrowd {
public:
    /// Starts the processes and returns when each is what it is going to be. Throws
    /// std::system_error when one cannot be started. They end with this object, and with the thread
    /// that made it.
    explicit ProcessCrowd(std::size_t count);
    ~ProcessCrowd();

    ProcessCrowd(const ProcessCrowd&) = delete;
    ProcessCrowd& operator=(const ProcessCrowd&) = delete;

private:
    void start(std::size_t count);
    void end();

    TemporaryFolder programs;
    std::vector<pid_t> processes;
};

} // namespace quorva::bench
