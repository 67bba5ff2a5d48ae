// Files in memory that fail on command: a full disk, a missing permission, a file deleted under its
// user's hands.
#pragma once

#include "platform/FileSystem.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace quorva {

class FaultyFileSystem final : public FileSystem {
public:
    using Contents = std::shared_ptr<std::string>;
    std::map<std::filesystem::path, Contents> files;

    // Each failure, while it is set, is what the operation comes to.
    std::optional<std::errc> createFails;
    std::optional<std::errc> openFails;
    std::optional<std::errc> sizeFails;
    std::optional<std::errc> appendFails;
    std::optional<std::errc> closeFails;
    std::map<std::filesystem::path, std::errc> renameFails; ///< by source

    [[nodiscard]] std::error_code createDirectories(const std::filesystem::path&) override {
        return outcome(createFails);
    }

    [[nodiscard]] std::unique_ptr<AppendFile> openForAppending(const std::filesystem::path& path,
                                                               std::error_code& error) override {
        error = outcome(openFails);
        if (error)
            return nullptr;
        auto& contents = files[path];
        if (!contents)
            contents = std::make_shared<std::string>();
        return std::make_unique<File>(*this, contents);
    }

    [[nodiscard]] bool exists(const std::filesystem::path& path) override {
        return files.contains(path);
    }

    [[nodiscard]] std::error_code remove(const std::filesystem::path& path) override {
        return files.erase(path) > 0 ? std::error_code{}
                                     : outcome(std::errc::no_such_file_or_directory);
    }

    [[nodiscard]] std::error_code rename(const std::filesystem::path& from,
                                         const std::filesystem::path& to) override {
        if (const auto fails = renameFails.find(from); fails != renameFails.end())
            return outcome(fails->second);
        auto node = files.extract(from);
        if (node.empty())
            return outcome(std::errc::no_such_file_or_directory);
        files[to] = node.mapped();
        return {};
    }

private:
    class File final : public AppendFile {
    public:
        File(FaultyFileSystem& system_, Contents contents_)
            : system(system_), contents(std::move(contents_)) {}

        [[nodiscard]] std::error_code append(std::string_view bytes) override {
            if (!system.appendFails)
                contents->append(bytes);
            return outcome(system.appendFails);
        }
        [[nodiscard]] std::uint64_t size(std::error_code& error) const override {
            error = outcome(system.sizeFails);
            return contents->size();
        }
        [[nodiscard]] bool isAt(const std::filesystem::path& path) const override {
            const auto found = system.files.find(path);
            return found != system.files.end() && found->second == contents;
        }
        [[nodiscard]] std::error_code close() override { return outcome(system.closeFails); }

    private:
        FaultyFileSystem& system;
        const Contents contents;
    };

    static std::error_code outcome(std::optional<std::errc> failure) {
        return failure ? std::make_error_code(*failure) : std::error_code{};
    }
};

} // namespace quorva
