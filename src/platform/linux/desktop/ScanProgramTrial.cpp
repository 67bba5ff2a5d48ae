#include "platform/linux/desktop/ScanProgramTrial.h"

#include "platform/linux/glib/AsyncCall.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/MainContext.h"
#include "platform/linux/glib/Utf8.h"

#include <csignal>
#include <memory>
#include <utility>

namespace quorva {
namespace {

/// One run of the program. Owned by the GIO call under way; a cancelled run starts no other.
struct Run : std::enable_shared_from_this<Run> {
    std::function<void(const std::string&)> onLine;
    std::function<void(bool)> done;
    GObjectPtr<GCancellable> cancellable{g_cancellable_new()};
    GObjectPtr<GSubprocess> process;
    GObjectPtr<GDataInputStream> output;

    [[nodiscard]] bool isCancelled() const {
        return g_cancellable_is_cancelled(cancellable.get()) != FALSE;
    }

    /// Hands the result of the call to `method`, unless the run has been cancelled meanwhile.
    [[nodiscard]] gpointer continueWith(void (Run::*method)(GAsyncResult*)) {
        return asyncData([self = shared_from_this(), method](GObject*, GAsyncResult* result) {
            if (!self->isCancelled())
                (*self.*method)(result);
        });
    }

    void readLine() {
        g_data_input_stream_read_line_async(output.get(), G_PRIORITY_DEFAULT, cancellable.get(),
                                            asyncCallback, continueWith(&Run::handleLine));
    }
    void handleLine(GAsyncResult* result) {
        gsize length = 0;
        const GCharsPtr line(
            g_data_input_stream_read_line_finish(output.get(), result, &length, nullptr));
        if (!line) { // the end of the output
            g_subprocess_wait_async(process.get(), cancellable.get(), asyncCallback,
                                    continueWith(&Run::handleEnd));
            return;
        }
        onLine(validUtf8({line.get(), length}));
        readLine();
    }
    void handleEnd(GAsyncResult* result) {
        (void)g_subprocess_wait_finish(process.get(), result, nullptr);
        const bool hasExited = g_subprocess_get_if_exited(process.get()) != FALSE;
        done(hasExited && g_subprocess_get_exit_status(process.get()) == 0);
    }
};

std::filesystem::path besideThisProgram() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored).replace_filename("quorva-scan");
}

} // namespace

ScanProgramTrial::ScanProgramTrial(std::filesystem::path program_) : program(std::move(program_)) {}

ScanProgramTrial::ScanProgramTrial() : ScanProgramTrial(besideThisProgram()) {}

Subscription ScanProgramTrial::run(std::function<void(const std::string&)> onLine,
                                   std::function<void(bool)> done) {
    const auto run = std::make_shared<Run>();
    run->onLine = std::move(onLine);
    run->done = std::move(done);
    GError* error = nullptr;
    run->process.reset(g_subprocess_new(G_SUBPROCESS_FLAGS_STDOUT_PIPE, &error, program.c_str(),
                                        "--self-test", nullptr));
    const GErrorPtr failure(error);
    if (run->process) {
        run->output.reset(
            g_data_input_stream_new(g_subprocess_get_stdout_pipe(run->process.get())));
        run->readLine();
    } else {
        postToMain([run, reason = validUtf8(failure->message)] {
            if (run->isCancelled())
                return;
            run->onLine("The trial can't be made: " + reason);
            run->done(false);
        });
    }
    return Subscription([run] {
        g_cancellable_cancel(run->cancellable.get());
        if (run->process)
            g_subprocess_send_signal(run->process.get(), SIGTERM);
    });
}

} // namespace quorva
