// The evidence log as other programs read it.
#include "ui/bridges/EvidenceExport.h"

#include "support/Eventually.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace quorva {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const ObjectionRecord plain{.id = "1",
                            .timestamp = Time{},
                            .templateUsed = "GDPR / EU",
                            .botName = "Otter.ai",
                            .meetingContext = "Zoom",
                            .source = DetectionSource::participant,
                            .copiedToClipboard = true};

std::string line(const std::string& botName) {
    auto record = plain;
    record.botName = botName;
    const auto csv = evidenceAsCsv({record});
    return csv.substr(csv.find("\r\n") + 2);
}

TEST(EvidenceExport, eachObjectionIsOneLineUnderTheHeadings) {
    EXPECT_EQ(evidenceAsCsv({}),
              "Time,Template,Bot,Meeting,Source,Copied to clipboard,Identifier\r\n");
    EXPECT_EQ(line("Otter.ai"), "\"1970-01-01T00:00:00.000Z\",\"GDPR / EU\",\"Otter.ai\",\"Zoom\","
                                "\"participant\",\"yes\",\"1\"\r\n");
}

TEST(EvidenceExport, namesCannotLeaveTheirFieldOrBecomeFormulas) {
    EXPECT_THAT(line("a\",\"b"), HasSubstr("\"a\"\",\"\"b\""));
    for (const std::string beginning : {"=", "+", "-", "@", "\t", "\r"})
        EXPECT_THAT(line(beginning + "cmd"), HasSubstr("\"'" + beginning + "cmd\""));
}

TEST(EvidenceExport, jsonHoldsTheRecordsAsTheyAreStored) {
    const auto json = nlohmann::json::parse(evidenceAsJson({plain}));
    ASSERT_EQ(json.size(), 1U);
    EXPECT_EQ(json[0]["botName"], "Otter.ai");
    EXPECT_EQ(json[0]["source"], "participant");
}

TEST(EvidenceExport, theNameOfTheFileDecidesAndFailuresAreTold) {
    const TemporaryFolder folder;
    VirtualMainLoop loop;
    EvidenceExport exporter(loop);
    std::vector<std::string> outcomes;
    const auto write = [&](const std::string& name) {
        const auto count = outcomes.size();
        exporter.write(QString::fromStdString((folder.path / name).string()), {plain},
                       [&](const QString& outcome) { outcomes.push_back(outcome.toStdString()); });
        return eventually(loop, [&] { return outcomes.size() > count; });
    };
    ASSERT_TRUE(write("log.csv"));
    ASSERT_TRUE(write("log.JSON"));
    ASSERT_TRUE(write("missing/log.csv"));
    EXPECT_THAT(folder.read("log.csv"), StartsWith("Time,"));
    EXPECT_THAT(folder.read("log.JSON"), StartsWith("["));
    EXPECT_THAT(outcomes[0], StartsWith("Exported to "));
    EXPECT_THAT(outcomes[2], StartsWith("The file could not be written: "));
}

} // namespace
} // namespace quorva
