#include "platform/linux/processes/LinuxApplications.h"

#include "base/ApplicationId.h"
#include "base/Text.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/processes/ApplicationIdentifiers.h"

#include <algorithm>
#include <tuple>
#include <unordered_set>

namespace quorva {
namespace {

constexpr Seconds burstPause{0.25};

std::optional<std::string> owned(std::optional<std::string_view> text) {
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

/// The catalogues' identifier for the first of these names that they know.
std::optional<std::string> knownIdentifierOf(std::initializer_list<std::string_view> names) {
    for (const auto name : names)
        if (const auto known = knownIdentifier(name))
            return owned(known);
    return std::nullopt;
}

/// The Flatpak application's id in the bytes of a sandbox's .flatpak-info.
std::optional<std::string> flatpakIdOf(std::string_view info) {
    const GKeyFilePtr file(g_key_file_new());
    if (!g_key_file_load_from_data(file.get(), info.data(), info.size(), G_KEY_FILE_NONE, nullptr))
        return std::nullopt;
    const GCharsPtr id(g_key_file_get_string(file.get(), "Application", "name", nullptr));
    return id && *id ? std::optional<std::string>(id.get()) : std::nullopt;
}

} // namespace

LinuxApplications::LinuxApplications(MainLoop& loop, LinuxProcessTable& processTable_,
                                     DesktopEntries& entries_, ApplicationScopes scopes_)
    : processTable(processTable_),
      entries(entries_),
      scopes(std::move(scopes_)),
      launches(loop),
      quits(loop),
      entriesObserver(entries_.onChange([this] { noteEntries(); })) {}

std::vector<RunningApplication> LinuxApplications::runningApplications() {
    const auto* const processes = processTable.look();
    entries.refresh();
    if (!processes || !isReady())
        return {};

    std::map<std::string, std::vector<const Process*>> processesOf;
    std::map<std::string, Identity> identities;
    for (auto& [process, identity] : members(*processes)) {
        processesOf[identity.key].push_back(process);
        identities.try_emplace(identity.key, std::move(identity));
    }

    std::vector<RunningApplication> applications;
    for (const auto& [key, group] : processesOf) {
        const auto* const main = topmost(group);
        auto& identity = identities.at(key);
        applications.push_back({
            .bundleIdentifier = std::move(identity.identifier),
            .localizedName = std::move(identity.name),
            .executablePath = main->status == Executable::Status::read
                                  ? std::optional(main->program)
                                  : std::nullopt,
            .processIdentifier = main->identifier,
        });
    }
    std::sort(applications.begin(), applications.end(), [](const auto& a, const auto& b) {
        return a.processIdentifier < b.processIdentifier;
    });
    return applications;
}

std::optional<std::string> LinuxApplications::ownBundleIdentifier() const {
    return applicationId;
}

bool LinuxApplications::isReady() const {
    return entries.isRead();
}

Subscription LinuxApplications::onReady(Task callback) {
    return isReady() ? Subscription() : readies.add(std::move(callback));
}

Subscription LinuxApplications::onLaunch(Task callback) {
    return launches.callbacks.add(std::move(callback));
}

Subscription LinuxApplications::onQuit(Task callback) {
    return quits.callbacks.add(std::move(callback));
}

void LinuxApplications::noteLaunch() {
    launches.note();
}

void LinuxApplications::noteQuit() {
    quits.note();
}

/// Called when the entries have been read for the first time, and when they have changed.
void LinuxApplications::noteEntries() {
    std::exchange(readies, {}).call();
    noteLaunch();
}

void LinuxApplications::Burst::note() {
    if (pause) {
        isPending = true;
        return;
    }
    pause = loop.after(burstPause, lifetime.guard([this] {
        pause.reset();
        if (std::exchange(isPending, false))
            note();
    }));
    callbacks.call();
}

/// The processes that are part of an application, each with the application's identity.
std::vector<LinuxApplications::Member>
LinuxApplications::members(const std::vector<Process>& processes) {
    const auto scoped = scopes.read();
    std::unordered_map<std::string_view, std::vector<const Process*>> processesOfScope;
    for (const auto& process : processes)
        if (const auto scope = scoped.find(process.identifier); scope != scoped.end())
            processesOfScope[scope->second->unit].push_back(&process);
    std::unordered_map<std::string_view, const Process*> mains;
    for (const auto& [unit, group] : processesOfScope)
        mains.emplace(unit, topmost(group));

    std::vector<Member> members;
    for (const auto& process : processes)
        if (auto identity = identityInScope(process, scoped, mains))
            members.push_back({&process, std::move(*identity)});
    return members;
}

/// A scope's application comprises its main process, other processes of the same program, and
/// helpers without an identity of their own. Another application that was started in the scope, for
/// example from a terminal, keeps its own identity.
std::optional<LinuxApplications::Identity> LinuxApplications::identityInScope(
    const Process& process, const ApplicationScopes::Members& scoped,
    const std::unordered_map<std::string_view, const Process*>& mains) {
    const auto scope = scoped.find(process.identifier);
    if (scope == scoped.end())
        return ownIdentity(process);
    const auto* const main = mains.at(scope->second->unit);
    if (&process != main && process.program != main->program)
        if (auto own = ownIdentity(process))
            return own;
    return identityOfUnit(scope->second->application, *main);
}

std::optional<LinuxApplications::Identity> LinuxApplications::ownIdentity(const Process& process) {
    if (process.status != Executable::Status::read)
        return std::nullopt;
    const std::string_view program = process.program;
    if (program.starts_with("/app/") || lastPathComponent(program) == "bwrap")
        if (auto flatpak = identityOfFlatpak(process))
            return flatpak;
    if (program.starts_with("/snap/")) {
        const auto rest = program.substr(std::string_view("/snap/").size());
        return identityOfSnap(std::string(rest.substr(0, rest.find('/'))), process);
    }
    if (process.executable.find("/.mount_") != std::string::npos)
        if (auto appImage = identityOfAppImage(process))
            return appImage;
    if (const auto* const entry = entries.index().byProgram(program))
        return identityOfEntry(*entry, process);
    if (const auto name = lastPathComponent(program); knownIdentifier(name))
        return identityOfId(name, process);
    return std::nullopt;
}

LinuxApplications::Identity LinuxApplications::identityOfEntry(const DesktopEntry& entry,
                                                               const Process& process) const {
    auto known = knownIdentifierOf({entry.id, lastPathComponent(process.program)});
    return {.key = entry.id, .name = entry.name, .identifier = known.value_or(entry.id)};
}

LinuxApplications::Identity LinuxApplications::identityOfId(std::string_view id,
                                                            const Process& process) const {
    if (const auto* const entry = entries.index().byId(id))
        return identityOfEntry(*entry, process);
    return identityOfEntry({.id = std::string(id)}, process);
}

LinuxApplications::Identity LinuxApplications::identityOfSnap(const std::string& snap,
                                                              const Process& process) const {
    Identity identity{.key = "snap." + snap};
    if (const auto* const entry = entries.index().bySnap(snap))
        identity.name = entry->name;
    identity.identifier =
        knownIdentifierOf({snap, lastPathComponent(process.program)}).value_or(snap);
    return identity;
}

LinuxApplications::Identity LinuxApplications::identityOfUnit(const UnitApplication& unit,
                                                              const Process& process) const {
    return unit.kind == UnitApplication::Kind::snap ? identityOfSnap(unit.id, process)
                                                    : identityOfId(unit.id, process);
}

std::optional<LinuxApplications::Identity>
LinuxApplications::identityOfFlatpak(const Process& process) {
    const auto info = processTable.read(process.identifier, "root/.flatpak-info");
    const auto id = info ? flatpakIdOf(*info) : std::nullopt;
    return id ? std::optional(identityOfId(*id, process)) : std::nullopt;
}

/// Reads nothing from the AppImage's own mount: the program that serves it may be stopped, and the
/// read would never return.
std::optional<LinuxApplications::Identity>
LinuxApplications::identityOfAppImage(const Process& process) {
    const auto environment = processTable.read(process.identifier, "environ");
    if (!environment)
        return std::nullopt;
    constexpr std::string_view variable = "APPIMAGE=";
    for (const auto entry : splitAtZeros(*environment)) {
        if (!entry.starts_with(variable))
            continue;
        const auto image = executableOfLink(entry.substr(variable.size()));
        if (const auto* const known = entries.index().byProgram(image))
            return identityOfEntry(*known, process);
        return Identity{.key = image,
                        .name = nameOfAppImage(image),
                        .identifier = knownIdentifierOf({lastPathComponent(process.program)})};
    }
    return std::nullopt;
}

/// The ancestor of the others: a process whose parent is not among them; of several, the one that
/// started first.
const LinuxProcessTable::Process*
LinuxApplications::topmost(const std::vector<const Process*>& processes) {
    if (processes.size() == 1)
        return processes.front();
    std::unordered_set<ProcessIdentifier> identifiers;
    for (const auto* const process : processes)
        identifiers.insert(process->identifier);
    const auto rank = [&](const Process* process) {
        const auto ancestry = processTable.ancestry(process->identifier).value_or(Ancestry{});
        return std::tuple(identifiers.contains(ancestry.parent), ancestry.startTicks,
                          process->identifier);
    };
    return *std::min_element(processes.begin(), processes.end(),
                             [&](const Process* a, const Process* b) { return rank(a) < rank(b); });
}

} // namespace quorva
