// A speech service that a test plays on a socket: it is silent, and answers as well or as badly
// as the test says.
#pragma once

#include <atomic>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quorva {

/// Serves one connection after the other on a thread of its own.
class PlayedSpeechService {
public:
    enum class Manner { answer, hang, talkNonsense, refuse };

    /// Listens at `address`, or throws.
    explicit PlayedSpeechService(const std::filesystem::path& address);
    ~PlayedSpeechService();

    PlayedSpeechService(const PlayedSpeechService&) = delete;
    PlayedSpeechService& operator=(const PlayedSpeechService&) = delete;

    std::atomic<Manner> manner = Manner::answer;
    std::atomic<int> connections = 0;    ///< accepted
    std::atomic<int> disconnections = 0; ///< ended by the other side

    /// The lines received, including those of texts.
    [[nodiscard]] std::vector<std::string> lines() const;
    [[nodiscard]] int count(const std::string& line) const;

    /// The texts received whole, each of one line.
    [[nodiscard]] std::vector<std::string> texts() const;

    /// Reports that the message with this number has been spoken.
    void tellEnd(int message);

    /// Ends the present connection.
    void hangUp();

private:
    void run();
    void serve(int fd);
    std::string answerTo(const std::string& line);
    void write(const std::string& bytes) const;

    const int listening;
    std::atomic<int> connected = -1;
    mutable std::mutex mutex;
    std::vector<std::string> received;
    bool isInText = false;
    int lastMessage = 0;
    std::thread thread;
};

} // namespace quorva
