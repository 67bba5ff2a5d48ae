#include "scan/Scan.h"

#include "support/FakeProcesses.h"
#include "support/RecordingLog.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using Json = nlohmann::ordered_json;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(ScanOptions, namesEverySourceOnceAndAllWhenNoneIsNamed) {
    const auto all = parseScanOptions({});
    ASSERT_TRUE(all.options);
    EXPECT_THAT(all.options->sources,
                ElementsAre(ScanSource::process, ScanSource::calendar, ScanSource::meeting));
    const auto some =
        parseScanOptions({"--json", "--source", "meeting", "--source=process", "--source=meeting"});
    ASSERT_TRUE(some.options);
    EXPECT_TRUE(some.options->json);
    EXPECT_FALSE(some.options->watch);
    EXPECT_THAT(some.options->sources, ElementsAre(ScanSource::process, ScanSource::meeting));
}

TEST(ScanOptions, sayWhatIsWrong) {
    EXPECT_THAT(parseScanOptions({"--source"}).problem, HasSubstr("--source needs"));
    EXPECT_THAT(parseScanOptions({"--source", "disk"}).problem, HasSubstr("\"disk\""));
    EXPECT_THAT(parseScanOptions({"--jsno"}).problem, HasSubstr("\"--jsno\""));
    EXPECT_FALSE(parseScanOptions({"--jsno"}).options);
}

class ScanTest : public testing::Test {
protected:
    ScanTest() { table.run(1, "/sbin/init"); }

    static ScanOptions processOnly() { return {.sources = {ScanSource::process}}; }

    VirtualMainLoop loop;
    RecordingLog log;
    FakeProcessTable table;
    FakeApplications applications;
    Platform platform{loop, log, table, applications};
};

TEST_F(ScanTest, tellsClearFoundAndIncompleteApart) {
    EXPECT_EQ(look(processOnly(), platform).exitStatus(), 0);
    EXPECT_EQ(look(processOnly(), platform).toJson()["verdict"], "clear");

    const auto everything = *parseScanOptions({}).options;
    EXPECT_EQ(look(everything, platform).exitStatus(), 3);
    EXPECT_EQ(look(everything, platform).toJson()["verdict"], "incomplete");

    table.canBeListed = false;
    const auto blind = look(processOnly(), platform);
    EXPECT_EQ(blind.exitStatus(), 3);
    EXPECT_EQ(blind.toJson()["sources"]["process"]["status"], "unavailable");
    EXPECT_THAT(blind.toText(), HasSubstr("not everything could be looked at"));

    table.canBeListed = true;
    table.run(7, "/usr/bin/otter");
    EXPECT_EQ(look(everything, platform).exitStatus(), 1) << "a finding outweighs a gap";
}

TEST_F(ScanTest, describesEachDetectionWithItsFields) {
    table.run(7, "/opt/a\xff/Otter.app/x");
    const auto json = Json::parse(dump(look(processOnly(), platform).toJson()));
    EXPECT_EQ(json["version"], 1);
    EXPECT_EQ(json["detections"]["process"][0], Json::parse(R"({"id":"otter-7",
        "signatureId":"otter","name":"Otter.ai","category":"transcription","confidence":95,
        "method":"processPath","processIdentifier":7,"matchedValue":"/opt/a\ufffd/Otter.app/x",
        "detectedAt":"2026-03-02T09:00:00.000Z"})"));
    EXPECT_EQ(json["detections"]["participants"], Json::array());
}

TEST_F(ScanTest, printsATableThatAFileNameCannotBreak) {
    table.run(7, "/tmp/otter.app/\n\x1b[2Jx");
    table.run(12345, "/usr/bin/clockwise");
    EXPECT_EQ(look(processOnly(), platform).toText(),
              "PRODUCT    CATEGORY       CONFIDENCE  PROCESS  MATCHED BY       MATCHED VALUE\n"
              "Otter.ai   Transcription  95 %        7        executable path  "
              "/tmp/otter.app/\\n\\u001b[2Jx\n"
              "Clockwise  Productivity   80 %        12345    name             clockwise\n"
              "\nFound: 2.\n"
              "  process   ok           looked at 3 processes\n");
}

TEST_F(ScanTest, watchPrintsAppearancesAndDisappearancesOnce) {
    std::vector<Json> lines;
    ScanWatch watch(processOnly(), platform,
                    [&](const std::string& line) { lines.push_back(Json::parse(line)); });
    EXPECT_EQ(watch.start().at(0).status, SourceStatus::ok);
    loop.advance(10s);
    EXPECT_TRUE(lines.empty());
    table.run(7, "/usr/bin/otter");
    loop.advance(3s);
    table.end(7);
    loop.advance(60s);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0]["event"], "appeared");
    EXPECT_EQ(lines[0]["source"], "process");
    EXPECT_EQ(lines[0]["at"], "2026-03-02T09:00:12.000Z");
    EXPECT_EQ(lines[1]["event"], "disappeared");
    EXPECT_EQ(lines[1]["detection"], lines[0]["detection"]);
}

} // namespace
} // namespace quorva
