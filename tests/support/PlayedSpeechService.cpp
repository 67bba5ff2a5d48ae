#include "support/PlayedSpeechService.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace quorva {
namespace {

int listenAt(const std::filesystem::path& address) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    std::strncpy(name.sun_path, address.c_str(), sizeof name.sun_path - 1);
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0 ||
        ::listen(fd, 5) != 0)
        throw std::runtime_error("no socket at " + address.string());
    return fd;
}

} // namespace

PlayedSpeechService::PlayedSpeechService(const std::filesystem::path& address)
    : listening(listenAt(address)), thread([this] { run(); }) {}

PlayedSpeechService::~PlayedSpeechService() {
    ::shutdown(listening, SHUT_RDWR);
    hangUp();
    thread.join();
    ::close(listening);
}

std::vector<std::string> PlayedSpeechService::lines() const {
    const std::lock_guard lock(mutex);
    return received;
}

int PlayedSpeechService::count(const std::string& line) const {
    const auto all = lines();
    return static_cast<int>(std::ranges::count(all, line));
}

std::vector<std::string> PlayedSpeechService::texts() const {
    const auto all = lines();
    std::vector<std::string> found;
    for (std::size_t at = 1; at < all.size(); ++at)
        if (all[at] == ".")
            found.push_back(all[at - 1]);
    return found;
}

void PlayedSpeechService::tellEnd(int message) {
    write("702-" + std::to_string(message) + "\r\n702-1\r\n702 END\r\n");
}

void PlayedSpeechService::hangUp() {
    if (const int fd = connected; fd >= 0)
        ::shutdown(fd, SHUT_RDWR);
}

void PlayedSpeechService::run() {
    for (int fd = ::accept(listening, nullptr, nullptr); fd >= 0;
         fd = ::accept(listening, nullptr, nullptr)) {
        connected = fd;
        isInText = false;
        ++connections;
        serve(fd);
        ++disconnections;
        connected = -1;
        ::close(fd);
    }
}

void PlayedSpeechService::serve(int fd) {
    std::string unread;
    char buffer[4096];
    for (auto size = ::read(fd, buffer, sizeof buffer); size > 0;
         size = ::read(fd, buffer, sizeof buffer)) {
        unread.append(buffer, static_cast<std::size_t>(size));
        for (auto end = unread.find("\r\n"); end != std::string::npos; end = unread.find("\r\n")) {
            const auto line = unread.substr(0, end);
            unread.erase(0, end + 2);
            {
                const std::lock_guard lock(mutex);
                received.push_back(line);
            }
            const auto answer = answerTo(line);
            if (manner == Manner::talkNonsense)
                write("HTTP/1.1 200 OK\r\n");
            else if (manner != Manner::hang)
                write(answer);
        }
    }
}

std::string PlayedSpeechService::answerTo(const std::string& line) {
    if (isInText) {
        isInText = line != ".";
        const auto number = std::to_string(isInText ? 0 : ++lastMessage);
        return isInText ? "" : "225-" + number + "\r\n225 OK MESSAGE QUEUED\r\n";
    }
    if (manner == Manner::refuse)
        return "300 ERR NOT TODAY\r\n";
    if (line == "SPEAK") {
        isInText = true;
        return "230 OK RECEIVING DATA\r\n";
    }
    if (line == "LIST SYNTHESIS_VOICES")
        return "249-English (America)\ten-us\tnone\r\n249-Deutsch\tde_DE\tnone\r\n"
               "249 OK VOICE LIST SENT\r\n";
    return "208 OK SET\r\n";
}

void PlayedSpeechService::write(const std::string& bytes) const {
    if (const int fd = connected; fd >= 0)
        (void)::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

} // namespace quorva
