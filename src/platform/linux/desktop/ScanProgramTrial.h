// The settings' trial of detection: runs quorva-scan --self-test and hands on what it prints. It is
// a process of its own so that the stand-ins' readers of windows and calendars are not a part of
// the application.
#pragma once

#include "platform/DetectionTest.h"

#include <filesystem>

namespace quorva {

/// Main thread only. Follows DetectionTest; a program that can't be started is reported as a line
/// and a failure.
class ScanProgramTrial final : public DetectionTest {
public:
    /// `program` is the path of quorva-scan.
    explicit ScanProgramTrial(std::filesystem::path program);

    /// Runs the quorva-scan in the folder of this program.
    ScanProgramTrial();

    /// Dropping the subscription ends the program (SIGTERM).
    [[nodiscard]] Subscription run(std::function<void(const std::string& line)> onLine,
                                   std::function<void(bool works)> done) override;

private:
    const std::filesystem::path program;
};

} // namespace quorva
