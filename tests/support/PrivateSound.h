// A private sound server, whose only speaker a test can listen to. For private sessions: it listens
// in the session's runtime folder.
#pragma once

#include "platform/linux/glib/Handles.h"

#include <filesystem>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

namespace quorva {

/// A program that the test starts, killed with it.
class StartedProgram {
public:
    explicit StartedProgram(
        std::initializer_list<const char*> words,
        GSubprocessFlags flags = static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_SILENCE |
                                                               G_SUBPROCESS_FLAGS_STDERR_SILENCE)) {
        std::vector<const gchar*> arguments(words);
        arguments.push_back(nullptr);
        process.reset(g_subprocess_newv(arguments.data(), flags, nullptr));
        if (!process)
            throw std::runtime_error(std::string("no ") + *words.begin());
    }
    ~StartedProgram() {
        g_subprocess_force_exit(process.get());
        g_subprocess_wait(process.get(), nullptr, nullptr);
    }
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    [[nodiscard]] GSubprocess* get() const { return process.get(); }

private:
    GObjectPtr<GSubprocess> process;
};

/// PulseAudio with a null sink "ear", described as "Test-Ear", its monitor, and a microphone that
/// hears nothing.
class PrivateSound {
public:
    [[nodiscard]] static std::filesystem::path socket() {
        return std::filesystem::path(g_get_user_runtime_dir()) / "pulse" / "native";
    }

    /// Whether it accepts connections; tests wait for that.
    [[nodiscard]] bool isReady() const { return std::filesystem::exists(socket()); }

    [[nodiscard]] GSubprocess* server() const { return process.get(); }

private:
    StartedProgram process{"pulseaudio",
                           "-n",
                           "--daemonize=no",
                           "--exit-idle-time=-1",
                           "--load=module-null-sink sink_name=ear "
                           "sink_properties=device.description=Test-Ear",
                           "--load=module-null-source source_name=mouth "
                           "description=Test-Microphone",
                           "--load=module-native-protocol-unix"};
};

} // namespace quorva
