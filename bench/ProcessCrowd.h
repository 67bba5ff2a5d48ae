// Real processes for the scan: half of them forks of this program, half of them other programs
// under several names. None is a product's name.
#pragma once

#include "support/TemporaryFolder.h"

#include <cstddef>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorva::bench {

class ProcessCrowd {
public:
    /// Starts the processes and returns when each runs its program. Throws std::system_error when
    /// one cannot be started. They end with this object, and with the thread that created it.
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
