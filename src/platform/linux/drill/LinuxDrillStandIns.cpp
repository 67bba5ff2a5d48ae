#include "platform/linux/drill/LinuxDrillStandIns.h"

#include "platform/linux/calendars/IcsFolderStore.h"
#include "platform/linux/drill/DrillFolder.h"
#include "platform/linux/drill/DrillMode.h"
#include "platform/linux/drill/DrillProcess.h"
#include "platform/linux/glib/BlockingWork.h"
#include "platform/linux/glib/Utf8.h"

#include <cstdio>
#include <exception>
#include <optional>
#include <string_view>
#include <utility>

namespace quorva {
namespace {

using Places = std::vector<std::filesystem::path>;

/// A folder with files, or the reason why it could not be created.
struct MadeFiles {
    std::shared_ptr<DrillFolder> folder;
    std::string problem;
    std::size_t place = 0; ///< the index of its place
};

/// Creates the files in the first usable place, beginning with this one.
MadeFiles makeFiles(const Places& places, std::size_t first,
                    const std::function<void(const std::filesystem::path& folder)>& make) {
    MadeFiles made{.folder = nullptr, .problem = "there is no folder for temporary files"};
    for (made.place = first; made.place < places.size(); ++made.place)
        try {
            auto folder = std::make_shared<DrillFolder>(places[made.place]);
            make(folder->path());
            made.folder = std::move(folder);
            break;
        } catch (const std::exception& failure) {
            made.problem = validUtf8(failure.what());
        }
    return made;
}

/// "20260302T100000Z"
std::string utcText(Time time) {
    auto text = iso8601Seconds(time);
    std::erase_if(text, [](char character) { return character == '-' || character == ':'; });
    return text;
}

/// An event (RFC 5545) that only the drill sees.
std::string iCalendarOf(const DrillEvent& event) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Quorva//Drill//EN\r\nBEGIN:VEVENT\r\nUID:" +
           event.identifier + "\r\nDTSTAMP:" + utcText(event.start) +
           "\r\nDTSTART:" + utcText(event.start) + "\r\nDTEND:" + utcText(event.end) +
           "\r\nSUMMARY:Quorva drill\r\nATTENDEE:mailto:" + event.attendee +
           "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

void writeFile(const std::filesystem::path& path, const std::string& content) {
    const std::unique_ptr<std::FILE, Release<std::fclose>> file(std::fopen(path.c_str(), "we"));
    if (!file || std::fwrite(content.data(), 1, content.size(), file.get()) != content.size() ||
        std::fflush(file.get()) != 0)
        throw std::system_error(errno, std::system_category(), path.string());
}

/// A subscription that owns an object.
template <typename Owned>
Subscription owning(std::shared_ptr<Owned> owned) {
    return Subscription([owned = std::move(owned)]() mutable { owned.reset(); });
}

CalendarServiceState stateOf(EdsCalendarStore::Service service) {
    switch (service) {
    case EdsCalendarStore::Service::absent:
        return CalendarServiceState::absent;
    case EdsCalendarStore::Service::present:
        return CalendarServiceState::answers;
    default:
        return CalendarServiceState::silent;
    }
}

} // namespace

/// A program that is being copied, or runs. The folder is removed after the process has ended.
struct LinuxDrillStandIns::Program {
    std::string name;
    std::function<void(const RunningStandIn&)> done;
    std::shared_ptr<DrillFolder> folder;
    std::unique_ptr<DrillProcess> process;
};

/// A calendar that is being written, or is ready.
struct LinuxDrillStandIns::Calendar {
    std::function<void(const CalendarStandIn&)> done;
    std::shared_ptr<DrillFolder> folder;
    std::unique_ptr<IcsFolderStore> store;
};

LinuxDrillStandIns::LinuxDrillStandIns(MainLoop& loop_, LinuxCalendarStore& calendars_,
                                       std::filesystem::path program_,
                                       std::vector<std::filesystem::path> places_)
    : loop(loop_),
      calendars(calendars_),
      program(std::move(program_)),
      places(std::move(places_)) {}

std::vector<std::filesystem::path> LinuxDrillStandIns::temporaryPlaces() {
    return {g_get_tmp_dir(), g_get_user_cache_dir()};
}

Subscription LinuxDrillStandIns::startProgram(const std::string& name,
                                              std::function<void(const RunningStandIn&)> done) {
    auto running = std::make_shared<Program>();
    running->name = name;
    running->done = std::move(done);
    copyProgram(running, 0);
    return owning(std::move(running));
}

/// Copies the program to a place, or to one after it, and starts it there.
void LinuxDrillStandIns::copyProgram(const std::weak_ptr<Program>& weak, std::size_t firstPlace) {
    const auto asked = weak.lock();
    if (!asked)
        return;
    runBlocking<MadeFiles>(
        nullptr,
        [from = program, to = places, firstPlace, name = asked->name](GCancellable*) {
            return makeFiles(to, firstPlace, [&](const std::filesystem::path& folder) {
                std::filesystem::copy_file(from, folder / name);
                std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
            });
        },
        lifetime.guard([this, weak](std::optional<MadeFiles> made) {
            const auto copied = weak.lock();
            if (!copied)
                return;
            if (!made->folder)
                return copied->done({.problem = made->problem});
            copied->folder = std::move(made->folder);
            runCopy(weak, made->place);
        }));
}

/// A place may be mounted without the permission to execute programs: then the next one is tried.
void LinuxDrillStandIns::runCopy(const std::weak_ptr<Program>& weak, std::size_t place) {
    const auto copied = weak.lock();
    copied->process = std::make_unique<DrillProcess>(
        copied->folder->path() / copied->name, std::vector<std::string>{"program"},
        lifetime.guard([this, weak, place](const RunningStandIn& started, bool isForbidden) {
            if (isForbidden && place + 1 < places.size())
                return copyProgram(weak, place + 1);
            const auto running = weak.lock();
            if (!running)
                return;
            auto told = started;
            if (isForbidden)
                told.problem += ": set TMPDIR to a folder that lets programs be run from it";
            running->done(told);
        }));
}

Subscription LinuxDrillStandIns::showWindow(const std::string& title,
                                            const std::vector<std::string>& participants,
                                            std::function<void(const RunningStandIn&)> done) {
    std::vector<std::string> arguments{"window", title};
    arguments.insert(arguments.end(), participants.begin(), participants.end());
    return owning(std::make_shared<DrillProcess>(
        program, arguments,
        [done = std::move(done)](const RunningStandIn& shown, bool) { done(shown); }));
}

Subscription LinuxDrillStandIns::writeCalendar(const DrillEvent& event,
                                               std::function<void(const CalendarStandIn&)> done) {
    auto calendar = std::make_shared<Calendar>();
    calendar->done = std::move(done);
    const std::weak_ptr weak(calendar);
    runBlocking<MadeFiles>(
        nullptr,
        [event, in = places](GCancellable*) {
            return makeFiles(in, 0, [&](const std::filesystem::path& folder) {
                writeFile(folder / "drill.ics", iCalendarOf(event));
            });
        },
        lifetime.guard([this, weak](std::optional<MadeFiles> made) {
            const auto written = weak.lock();
            if (!written)
                return;
            if (!made->folder)
                return written->done({.problem = made->problem});
            written->folder = std::move(made->folder);
            written->store = std::make_unique<IcsFolderStore>(
                loop, IcsPlaces{.root = {}, .folders = {written->folder->path()}});
            written->done({.store = written->store.get()});
        }));
    return owning(std::move(calendar));
}

Subscription
LinuxDrillStandIns::askCalendarService(std::function<void(CalendarServiceState)> done) {
    auto waiting = std::make_shared<Lifetime>();
    const auto answer =
        waiting->guard([done = std::move(done)](CalendarServiceState state) { done(state); });
    auto search = std::make_shared<Subscription>(
        calendars.findService([this, answer](EdsCalendarStore::Service service) {
            loop.post([answer, state = stateOf(service)] { answer(state); });
        }));
    return Subscription([waiting, search]() mutable {
        search.reset();
        waiting.reset();
    });
}

} // namespace quorva
