#include "platform/linux/desktop/ScanProgramTest.h"

#include "platform/linux/glib/AsyncCall.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/MainContext.h"
#include "platform/linux/glib/Utf8.h"

#include <csignal>
#include <memory>
#include <utility>

namespace quorva {
namespace {

/// A trial under way. Each wait holds on to it; none is left once it has been cancelled.
struct Trial : std::enable_shared_from_this<Trial> {
    std::function<void(const std::string&)> onLine;
    std::function<void(bool)> done;
    GObjectPtr<GCancellable> cancellable{g_cancellable_new()};
    GObjectPtr<GSubprocess> process;
    GObjectPtr<GDataInputStream> output;

    /// Hands the result of a wait to `method`, unless the trial has been cancelled meanwhile.
    [[nodiscard]] gpointer resumeWith(void (Trial::*method)(GAsyncResult*)) {
        return asyncData([self = shared_from_this(), method](GObject*, GAsyncResult* result) {
            if (g_cancellable_is_cancelled(self->cancellable.get()) == FALSE)
                (*self.*method)(result);
        });
    }

    void readLine() {
        g_data_input_stream_read_line_async(output.get(), G_PRIORITY_DEFAULT, cancellable.get(),
                                            asyncCallback, resumeWith(&Trial::takeLine));
    }
    void takeLine(GAsyncResult* result) {
        gsize length = 0;
        const GCharsPtr line(
            g_data_input_stream_read_line_finish(output.get(), result, &length, nullptr));
        if (!line) { // its end
            g_subprocess_wait_async(process.get(), cancellable.get(), asyncCallback,
                                    resumeWith(&Trial::takeEnd));
            return;
        }
        onLine(validUtf8({line.get(), length}));
        readLine();
    }
    void takeEnd(GAsyncResult* result) {
        (void)g_subprocess_wait_finish(process.get(), result, nullptr);
        const bool hasEnded = g_subprocess_get_if_exited(process.get()) != FALSE;
        done(hasEnded && g_subprocess_get_exit_status(process.get()) == 0);
    }
};

std::filesystem::path besideThisProgram() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored).replace_filename("quorva-scan");
}

} // namespace

ScanProgramTest::ScanProgramTest(std::filesystem::path program_) : program(std::move(program_)) {}

ScanProgramTest::ScanProgramTest() : ScanProgramTest(besideThisProgram()) {}

Subscription ScanProgramTest::run(std::function<void(const std::string&)> onLine,
                                  std::function<void(bool)> done) {
    const auto trial = std::make_shared<Trial>();
    trial->onLine = std::move(onLine);
    trial->done = std::move(done);
    GError* error = nullptr;
    trial->process.reset(g_subprocess_new(G_SUBPROCESS_FLAGS_STDOUT_PIPE, &error, program.c_str(),
                                          "--self-test", nullptr));
    const GErrorPtr failure(error);
    if (trial->process) {
        trial->output.reset(
            g_data_input_stream_new(g_subprocess_get_stdout_pipe(trial->process.get())));
        trial->readLine();
    } else {
        postToMain([trial, reason = validUtf8(failure->message)] {
            if (g_cancellable_is_cancelled(trial->cancellable.get()) != FALSE)
                return;
            trial->onLine("The trial can't be made: " + reason);
            trial->done(false);
        });
    }
    return Subscription([trial] {
        g_cancellable_cancel(trial->cancellable.get());
        if (trial->process)
            g_subprocess_send_signal(trial->process.get(), SIGTERM);
    });
}

} // namespace quorva
