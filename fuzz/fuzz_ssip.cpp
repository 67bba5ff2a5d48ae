// Any bytes as the answers of a speech service, and as the texts for it to speak. Answers follow
// the protocol or end the connection, once; a text that is sent ends where it should and not
// before.
#include "Expect.h"
#include "platform/linux/speech/SsipConnection.h"
#include "support/VirtualMainLoop.h"

#include <gio/gunixconnection.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <sys/socket.h>

using namespace quorva;

namespace {

void expectUtf8(const std::string& text) {
    expectText(text);
}

void readLine(std::string_view bytes) {
    if (const auto line = ssip::decodeLine(bytes)) {
        expect(line->code >= 0 && line->code <= 999);
        expectUtf8(line->text);
        const auto again = ssip::decodeLine(std::string(bytes.substr(0, 3)) +
                                            (line->isLast ? ' ' : '-') + line->text);
        expect(again == line);
    }
    if (const auto voice = ssip::decodeVoice(bytes))
        expect(!voice->name.empty() && bytes.starts_with(voice->name) &&
               voice->name.find('\t') == std::string::npos);
    const auto tag = ssip::languageTag(bytes);
    expect(!tag.empty() && ssip::languageTag(tag) == tag);
    expect(
        tag.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-") ==
        std::string::npos);
}

/// Reads a sent text as the service does: up to the line that is a dot, without the escaping dots.
void speak(std::string_view bytes) {
    std::string rest = ssip::encodeText(bytes);
    expectUtf8(rest);
    std::string heard;
    while (true) {
        const auto end = rest.find("\r\n");
        expect(end != std::string::npos);
        auto line = rest.substr(0, end);
        rest.erase(0, end + 2);
        expect(line.find_first_of("\r\n") == std::string::npos);
        if (line == ".")
            break;
        heard += line.starts_with("..") ? line.substr(1) : line;
        heard += '\n';
    }
    expect(rest.empty());
    const auto command = ssip::encodeCommand(bytes);
    expect(command.find_first_of(std::string_view("\r\n\0", 3)) == command.size() - 2);
    if (g_utf8_validate_len(bytes.data(), bytes.size(), nullptr) == FALSE)
        return;
    std::string said(bytes);
    std::erase(said, '\r');
    expect(heard == said + '\n');
}

/// A connection on which the service sends these bytes.
void converse(std::string_view bytes) {
    std::array<int, 2> ends{};
    expect(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0);
    FileDescriptor service(ends[1]);
    const GObjectPtr<GSocket> socket(g_socket_new_from_fd(ends[0], nullptr));
    GObjectPtr<GSocketConnection> joined(
        g_socket_connection_factory_create_connection(socket.get()));
    VirtualMainLoop loop;
    int answers = 0;
    int endings = 0;
    const auto check = [&](const ssip::Reply& reply) {
        expect(endings == 0);
        expect(reply.code >= 0 && reply.code <= 999);
        expectUtf8(reply.explanation);
        for (const auto& value : reply.values)
            expectUtf8(value);
    };
    SsipConnection connection(loop, std::move(joined), Seconds(5),
                              {.onEvent =
                                   [&](const ssip::Reply& reply) {
                                       check(reply);
                                       expect(reply.code >= 700 && reply.code < 800);
                                   },
                               .onEnd = [&](SsipConnection::End) { ++endings; }});
    const auto count = [&](const ssip::Reply& reply) {
        check(reply);
        ++answers;
    };
    connection.ask("LIST SYNTHESIS_VOICES", count);
    connection.say("Recording found.", count);
    (void)!::write(service.get(), bytes.data(), bytes.size());
    ::shutdown(service.get(), SHUT_WR);
    for (int turn = 0; turn < 100 && endings == 0; ++turn)
        g_main_context_iteration(nullptr, FALSE);
    expect(endings == 1 && answers <= 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    readLine(bytes);
    speak(bytes);
    if (size < 4096) // that much fits into the socket at once
        converse(bytes);
    return 0;
}
