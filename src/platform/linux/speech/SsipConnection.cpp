#include "platform/linux/speech/SsipConnection.h"

#include "platform/linux/glib/AsyncCall.h"

#include <utility>

namespace quorva {
namespace {

constexpr std::size_t longestLine = 65'536;
constexpr std::size_t mostLines = 20'000; ///< a list of voices may be long
constexpr std::size_t mostRead = 16'384;
constexpr int receivingData = 230;

using BytesPtr = std::unique_ptr<GBytes, Release<g_bytes_unref>>;

bool isEvent(int code) {
    return code >= 700 && code < 800;
}

} // namespace

SsipConnection::SsipConnection(MainLoop& loop_, GObjectPtr<GSocketConnection> socket_,
                               Seconds answer_, Callbacks callbacks_)
    : loop(loop_), socket(std::move(socket_)), answer(answer_), callbacks(std::move(callbacks_)) {
    read();
}

SsipConnection::~SsipConnection() {
    g_cancellable_cancel(cancellable.get());
}

void SsipConnection::ask(std::string_view command, Done done) {
    commands.push_back({ssip::encodeCommand(command), {}, std::move(done)});
    sendNext();
}

void SsipConnection::say(std::string_view text, Done done) {
    commands.push_back({ssip::encodeCommand("SPEAK"), ssip::encodeText(text), std::move(done)});
    sendNext();
}

void SsipConnection::sendNext() {
    if (isAsking || isOver || commands.empty())
        return;
    isAsking = true;
    write(commands.front().line);
}

void SsipConnection::write(std::string_view bytes) {
    patience = loop.after(answer, [this] { finish(End::silent); });
    unwritten += bytes;
    flush();
}

/// One writing at a time: an answer can be here before the writing has ended.
void SsipConnection::flush() {
    if (isWriting || unwritten.empty() || isOver)
        return;
    isWriting = true;
    const auto held = std::make_shared<const std::string>(std::exchange(unwritten, {}));
    auto* const stream = g_io_stream_get_output_stream(G_IO_STREAM(socket.get()));
    const auto ended = lifetime.guard([this](bool isWritten) {
        isWriting = false;
        isWritten ? flush() : finish(End::closed);
    });
    g_output_stream_write_all_async(
        stream, held->data(), held->size(), G_PRIORITY_DEFAULT, cancellable.get(), asyncCallback,
        asyncData([held, ended](GObject* source, GAsyncResult* result) {
            ended(g_output_stream_write_all_finish(G_OUTPUT_STREAM(source), result, nullptr,
                                                   nullptr) != FALSE);
        }));
}

void SsipConnection::read() {
    auto* const stream = g_io_stream_get_input_stream(G_IO_STREAM(socket.get()));
    g_input_stream_read_bytes_async(
        stream, mostRead, G_PRIORITY_DEFAULT, cancellable.get(), asyncCallback,
        asyncData([taken = lifetime.guard([this](std::string_view bytes) { take(bytes); })](
                      GObject* source, GAsyncResult* result) {
            const BytesPtr bytes(
                g_input_stream_read_bytes_finish(G_INPUT_STREAM(source), result, nullptr));
            gsize size = 0;
            const auto* const data =
                bytes ? static_cast<const char*>(g_bytes_get_data(bytes.get(), &size)) : nullptr;
            taken(data != nullptr ? std::string_view(data, size) : std::string_view());
        }));
}

/// Nothing to take: the service has ended the conversation, or it failed.
void SsipConnection::take(std::string_view bytes) {
    if (bytes.empty())
        return finish(End::closed);
    unread += bytes;
    const auto received = std::exchange(unread, {});
    unread = received.substr(received.rfind('\n') + 1); // npos + 1 is 0
    if (unread.size() > longestLine)
        return finish(End::strange);
    // Whoever is called may drop this object.
    const auto takeNext = lifetime.guard([this](std::string_view line) { takeLine(line); });
    const auto readOn = lifetime.guard([this] {
        if (!isOver)
            read();
    });
    const auto lines = std::string_view(received).substr(0, received.rfind('\n') + 1);
    for (std::size_t start = 0; start < lines.size();) {
        const auto lineEnd = lines.find('\n', start);
        takeNext(lines.substr(start, lineEnd - start));
        start = lineEnd + 1;
    }
    readOn();
}

void SsipConnection::takeLine(std::string_view bytes) {
    if (isOver)
        return;
    auto line = ssip::decodeLine(bytes);
    if (!line || (partial.code != 0 && partial.code != line->code) ||
        partial.values.size() >= mostLines)
        return finish(End::strange);
    partial.code = line->code;
    if (!line->isLast) {
        partial.values.push_back(std::move(line->text));
        return;
    }
    partial.explanation = std::move(line->text);
    takeReply(std::exchange(partial, {}));
}

void SsipConnection::takeReply(const ssip::Reply& reply) {
    if (isEvent(reply.code)) {
        const auto onEvent = callbacks.onEvent;
        return onEvent(reply);
    }
    if (!isAsking)
        return; // to nothing that was asked
    if (reply.code == receivingData && !commands.front().text.empty()) {
        write(std::exchange(commands.front().text, {}));
        return;
    }
    patience.reset();
    isAsking = false;
    const auto done = std::move(commands.front().done);
    commands.pop_front();
    sendNext();
    if (done)
        done(reply);
}

void SsipConnection::finish(End end) {
    if (std::exchange(isOver, true))
        return;
    g_cancellable_cancel(cancellable.get());
    patience.reset();
    const auto onEnd = callbacks.onEnd;
    onEnd(end);
}

} // namespace quorva
