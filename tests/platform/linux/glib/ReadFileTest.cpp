#include "platform/linux/glib/ReadFile.h"

#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace quorva {
namespace {

using testing::Optional;

TEST(ReadFile, ReadsToTheEndHoweverTheBytesArrive) {
    int ends[2] = {};
    ASSERT_EQ(::pipe2(ends, O_DIRECT), 0); // one read(2) for each write(2)
    const FileDescriptor reading(ends[0]);
    for (const std::string_view part : {"one ", "two ", "three"})
        ASSERT_EQ(::write(ends[1], part.data(), part.size()), static_cast<ssize_t>(part.size()));
    ::close(ends[1]);
    std::error_code error;
    EXPECT_THAT(readUpTo(reading, 100, error), Optional(std::string("one two three")));

    const TemporaryFolder folder;
    const std::string large(300'000, 'x'); // more than one buffer
    folder.write("large", large);
    EXPECT_EQ(readWholeFile(folder.path / "large", 1'000'000, error), large);
    EXPECT_THAT(readWholeFile("/proc/self/stat", 4096, error), // of size 0, says stat(2)
                Optional(testing::EndsWith("\n")));
}

TEST(ReadFile, SaysWhyAFileIsNotRead) {
    const TemporaryFolder folder;
    folder.write("file", "12345");
    std::error_code error;
    EXPECT_THAT(readWholeFile(folder.path / "file", 5, error), Optional(std::string("12345")));
    EXPECT_FALSE(error);
    EXPECT_FALSE(readWholeFile(folder.path / "file", 4, error));
    EXPECT_EQ(error, std::errc::file_too_large);
    EXPECT_FALSE(readWholeFile(folder.path / "missing", 4, error));
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
    EXPECT_FALSE(readWholeFile(folder.path, 4, error));
    EXPECT_EQ(error, std::errc::invalid_argument);
    ASSERT_EQ(::mkfifo((folder.path / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(readWholeFile(folder.path / "pipe", 4, error)); // and does not wait for a writer
    EXPECT_EQ(error, std::errc::invalid_argument);
}

} // namespace
} // namespace quorva
