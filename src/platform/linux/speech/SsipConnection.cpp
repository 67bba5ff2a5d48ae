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
                               Seconds answerTimeout_, Callbacks callbacks_)
    : loop(loop_),
      socket(std::move(socket_)),
      answerTimeout(answerTimeout_),
      callbacks(std::move(callbacks_)) {
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
    if (state != State::idle || commands.empty())
        return;
    state = State::waiting;
    write(commands.front().line);
}

void SsipConnection::write(std::string_view bytes) {
    timeout = loop.after(answerTimeout, [this] { finish(End::silent); });
    unwritten += bytes;
    flush();
}

/// Writes what is waiting, unless a write is under way: an answer can arrive before that ends.
void SsipConnection::flush() {
    if (isWriting || unwritten.empty() || state == State::over)
        return;
    isWriting = true;
    const auto held = std::make_shared<const std::string>(std::exchange(unwritten, {}));
    auto* const stream = g_io_stream_get_output_stream(G_IO_STREAM(socket.get()));
    const auto ended = lifetime.guard([this](bool isWritten) {
        isWriting = false;
        if (isWritten)
            flush();
        else
            finish(End::closed);
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
        asyncData([handle = lifetime.guard([this](std::string_view bytes) { handleBytes(bytes); })](
                      GObject* source, GAsyncResult* result) {
            const BytesPtr bytes(
                g_input_stream_read_bytes_finish(G_INPUT_STREAM(source), result, nullptr));
            gsize size = 0;
            const auto* const data =
                bytes ? static_cast<const char*>(g_bytes_get_data(bytes.get(), &size)) : nullptr;
            handle(data != nullptr ? std::string_view(data, size) : std::string_view());
        }));
}

/// No bytes: the service has closed the connection, or it failed.
void SsipConnection::handleBytes(std::string_view bytes) {
    if (bytes.empty())
        return finish(End::closed);
    partialLine += bytes;
    const auto received = std::exchange(partialLine, {});
    partialLine = received.substr(received.rfind('\n') + 1); // npos + 1 is 0
    if (partialLine.size() > longestLine)
        return finish(End::malformed);
    // A callback may drop this object.
    const auto handleNext = lifetime.guard([this](std::string_view line) { handleLine(line); });
    const auto readOn = lifetime.guard([this] {
        if (state != State::over)
            read();
    });
    const auto lines = std::string_view(received).substr(0, received.rfind('\n') + 1);
    for (std::size_t start = 0; start < lines.size();) {
        const auto lineEnd = lines.find('\n', start);
        handleNext(lines.substr(start, lineEnd - start));
        start = lineEnd + 1;
    }
    readOn();
}

void SsipConnection::handleLine(std::string_view bytes) {
    if (state == State::over)
        return;
    auto line = ssip::decodeLine(bytes);
    if (!line || (partialReply.code != 0 && partialReply.code != line->code) ||
        partialReply.values.size() >= mostLines)
        return finish(End::malformed);
    partialReply.code = line->code;
    if (!line->isLast) {
        partialReply.values.push_back(std::move(line->text));
        return;
    }
    partialReply.explanation = std::move(line->text);
    handleReply(std::exchange(partialReply, {}));
}

void SsipConnection::handleReply(const ssip::Reply& reply) {
    if (isEvent(reply.code)) {
        const auto onEvent = callbacks.onEvent;
        return onEvent(reply);
    }
    if (state != State::waiting)
        return; // answers no command
    if (reply.code == receivingData && !commands.front().text.empty()) {
        write(std::exchange(commands.front().text, {}));
        return;
    }
    timeout.reset();
    state = State::idle;
    const auto done = std::move(commands.front().done);
    commands.pop_front();
    sendNext();
    if (done)
        done(reply);
}

void SsipConnection::finish(End end) {
    if (std::exchange(state, State::over) == State::over)
        return;
    g_cancellable_cancel(cancellable.get());
    timeout.reset();
    const auto onEnd = callbacks.onEnd;
    onEnd(end);
}

} // namespace quorva
