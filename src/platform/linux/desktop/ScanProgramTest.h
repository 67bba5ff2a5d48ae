// The trial of detection that quorva-scan makes: it is started with --self-test, and what it prints
// is handed on. A process of its own, because the stand-ins are processes of its own too.
#pragma once

#include "platform/DetectionTest.h"

#include <filesystem>

namespace quorva {

class ScanProgramTest final : public DetectionTest {
public:
    /// `program` is quorva-scan, as a path.
    explicit ScanProgramTest(std::filesystem::path program);

    /// The one beside this program.
    ScanProgramTest();

    /// The program is ended (SIGTERM) when the subscription is dropped.
    [[nodiscard]] Subscription run(std::function<void(const std::string& line)> onLine,
                                   std::function<void(bool works)> done) override;

private:
    const std::filesystem::path program;
};

} // namespace quorva
