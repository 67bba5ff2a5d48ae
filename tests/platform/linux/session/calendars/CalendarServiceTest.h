// Shared by the tests of the real calendar service. The bus of the test's session starts the
// service, and a client of its own writes to the calendars.
#pragma once

#include "platform/linux/glib/GLibMainLoop.h"
#include "support/RecordingLog.h"

#include <fmt/chrono.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <libecal/libecal.h>
#include <sstream>
#include <string>

namespace quorva {

inline std::string utc(Time time) {
    return fmt::format("{:%Y%m%dT%H%M%SZ}", std::chrono::floor<std::chrono::seconds>(time));
}

/// An event of half an hour, with further `lines`.
inline std::string vevent(const std::string& uid, Time start, const std::string& lines) {
    return fmt::format("BEGIN:VEVENT\r\nUID:{}\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:{}\r\n"
                       "DTEND:{}\r\n{}END:VEVENT\r\n",
                       uid, utc(start), utc(start + std::chrono::minutes(30)), lines);
}

inline std::string vcalendar(const std::string& lines) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + lines + "END:VCALENDAR\r\n";
}

/// Another client that writes to a calendar, by default to "Personal".
class CalendarWriter {
public:
    CalendarWriter()
        : CalendarWriter(
              GObjectPtr<ESource>(e_source_new_with_uid("system-calendar", nullptr, nullptr))
                  .get()) {}
    explicit CalendarWriter(ESource* source)
        : client(E_CAL_CLIENT(e_cal_client_connect_sync(source, E_CAL_CLIENT_SOURCE_TYPE_EVENTS,
                                                        static_cast<guint32>(-1), nullptr,
                                                        nullptr))) {}

    /// Adds events, or replaces those of the same UID.
    [[nodiscard]] bool put(const std::string& events) {
        const GObjectPtr<ICalComponent> component(
            i_cal_component_new_from_string(vcalendar("METHOD:PUBLISH\r\n" + events).c_str()));
        return client &&
               e_cal_client_receive_objects_sync(client.get(), component.get(),
                                                 E_CAL_OPERATION_FLAG_NONE, nullptr, nullptr);
    }

    [[nodiscard]] bool remove(const char* uid) {
        return e_cal_client_remove_object_sync(client.get(), uid, nullptr, E_CAL_OBJ_MOD_ALL,
                                               E_CAL_OPERATION_FLAG_NONE, nullptr, nullptr);
    }

private:
    GObjectPtr<ECalClient> client;
};

/// Adds a calendar to the service; null when that fails.
inline GObjectPtr<ESource> addCalendar(const char* name, const char* backend = "local") {
    GObjectPtr<ESource> source(e_source_new(nullptr, nullptr, nullptr));
    e_source_set_display_name(source.get(), name);
    e_source_set_parent(source.get(), "local-stub");
    e_source_backend_set_backend_name(
        E_SOURCE_BACKEND(e_source_get_extension(source.get(), E_SOURCE_EXTENSION_CALENDAR)),
        backend);
    const GObjectPtr<ESourceRegistry> registry(e_source_registry_new_sync(nullptr, nullptr));
    if (!registry ||
        !e_source_registry_commit_source_sync(registry.get(), source.get(), nullptr, nullptr))
        return {};
    return GObjectPtr<ESource>(
        e_source_registry_ref_source(registry.get(), e_source_get_uid(source.get())));
}

class CalendarServiceTest : public testing::Test {
protected:
    /// Turns the main loop until `condition` holds; false if it does not within 40 seconds.
    template <typename Condition>
    [[nodiscard]] bool comesTo(Condition condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(40);
        const auto wake = loop.every(Seconds(0.01), [this] { ++ticks; });
        while (!condition() && std::chrono::steady_clock::now() < deadline)
            g_main_context_iteration(nullptr, TRUE);
        return condition();
    }

    /// Sends `signal` to the processes of this session that serve calendars; returns their number.
    static int signalService(int signal) {
        int processes = 0;
        const auto home = std::string("HOME=") + std::getenv("HOME") + '\0';
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            if (contentsOf(entry.path() / "cmdline").find("/evolution-calendar-factory") ==
                    std::string::npos ||
                contentsOf(entry.path() / "environ").find(home) == std::string::npos)
                continue;
            ::kill(std::stoi(entry.path().filename()), signal);
            ++processes;
        }
        return processes;
    }

    /// Empty for a process that has just ended.
    static std::string contentsOf(const std::filesystem::path& file) {
        std::ostringstream contents;
        contents << std::ifstream(file).rdbuf();
        return contents.str();
    }

    GLibMainLoop loop;
    RecordingLog log;
    const Time now = std::chrono::floor<std::chrono::minutes>(loop.now());
    int ticks = 0;
};

} // namespace quorva
