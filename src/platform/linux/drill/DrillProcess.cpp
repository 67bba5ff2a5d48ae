#include "platform/linux/drill/DrillProcess.h"

#include "platform/linux/drill/DrillMode.h"
#include "platform/linux/glib/AsyncCall.h"
#include "platform/linux/glib/MainContext.h"
#include "platform/linux/glib/Utf8.h"

#include <cstdlib>
#include <memory>
#include <utility>

namespace quorva {
namespace {

std::vector<const char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<const char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const auto& text : texts)
        pointers.push_back(text.c_str());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

DrillProcess::DrillProcess(const std::filesystem::path& program,
                           const std::vector<std::string>& arguments,
                           std::function<void(const RunningStandIn&, bool)> done_)
    : done(std::move(done_)) {
    std::vector<std::string> command{program.string(), std::string(drillMode)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    GError* error = nullptr;
    process.reset(
        g_subprocess_newv(pointersTo(command).data(),
                          static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE |
                                                        G_SUBPROCESS_FLAGS_STDOUT_PIPE |
                                                        G_SUBPROCESS_FLAGS_STDERR_SILENCE),
                          &error));
    const GErrorPtr failure(error);
    if (process) {
        listen();
        return;
    }
    const bool isForbidden = g_error_matches(error, G_SPAWN_ERROR, G_SPAWN_ERROR_ACCES) != FALSE ||
                             g_error_matches(error, G_SPAWN_ERROR, G_SPAWN_ERROR_PERM) != FALSE;
    postToMain(lifetime.guard([this, problem = validUtf8(failure->message), isForbidden] {
        done({.problem = problem}, isForbidden);
    }));
}

DrillProcess::~DrillProcess() {
    if (process)
        g_subprocess_force_exit(process.get());
}

void DrillProcess::listen() {
    output.reset(g_data_input_stream_new(g_subprocess_get_stdout_pipe(process.get())));
    g_data_input_stream_read_line_async(
        output.get(), G_PRIORITY_DEFAULT, nullptr, asyncCallback,
        asyncData([heard = lifetime.guard([this](const std::string& line) { hear(line); })](
                      GObject* stream, GAsyncResult* result) {
            const GCharsPtr line(g_data_input_stream_read_line_finish(G_DATA_INPUT_STREAM(stream),
                                                                      result, nullptr, nullptr));
            heard(line ? line.get() : "it ended before it was ready");
        }));
}

void DrillProcess::hear(const std::string& line) {
    if (line != drillReady)
        return done({.problem = validUtf8(line)}, false);
    const char* const identifier = g_subprocess_get_identifier(process.get());
    if (identifier == nullptr)
        return done({.problem = "it ended at once"}, false);
    done({.process = std::atoi(identifier)}, false);
}

} // namespace quorva
