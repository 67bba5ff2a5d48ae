#include "ui/bridges/SettingsBridge.h"

#include "core/ShareText.h"
#include "ui/rows/DetectionRows.h"
#include "ui/rows/DisplayText.h"
#include "ui/rows/ViewTexts.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QRegularExpression>

namespace quorva {
namespace {

constexpr qsizetype longestAddress = 254; // of RFC 5321
constexpr std::size_t mostAddresses = 50;

} // namespace

SettingsBridge::SettingsBridge(AppState& state_, Updates& updates_, MainLoop& loop)
    : state(state_), updates(updates_), evidenceExport(loop), watch(loop, [this] { update(); }) {
    auto& settings = state.settings;
    watch.follow(settings.launchAtLogin, settings.showNotifications, settings.autoStartMonitoring,
                 settings.calendarMonitorEnabled, settings.participantMonitorEnabled,
                 settings.myAddresses);
    watch.follow(updates.checksAutomatically, updates.isChecking, updates.answer);
    watch.follow(state.isMonitoring, state.sources.meeting.monitor.activeMeetingPlatform,
                 state.limitations.all, state.allowList.allowedBotIds);
    state.permissions.follow(watch);
    watch.follow(state.detectionTrial.isRunning, state.detectionTrial.lines);
    watch.follow(state.objections.objectionLog.records, state.objections.selectedTemplate);
    std::vector<Row> titles;
    for (const auto& [value, raw] : namedCases<ObjectionTemplate>) {
        const auto& text = objectionText(value);
        titles.push_back({.id = ours(raw),
                          .title = ours(text.displayTitle),
                          .subtitle = ours(text.templateDescription)});
    }
    templateRows.show(std::move(titles));
    update();
}

void SettingsBridge::update() {
    allowedRows.show(rowsOfAllowed(state.allowList.allowedBotIds.get(), state.sources));
    evidenceRows.show(rowsOf(state.objections.objectionLog.records.get()));
    emit changed();
}

void SettingsBridge::setChecksAutomatically(bool isOn) {
    if (updates.checksAutomatically != isOn)
        updates.setChecksAutomatically(isOn);
}

QString SettingsBridge::updateText() const {
    return ours(quorva::updateText(updates.isChecking, updates.answer));
}

void SettingsBridge::setCalendarEnabled(bool isOn) {
    if (calendarEnabled() != isOn)
        state.toggleCalendarMonitor();
}

QString SettingsBridge::myAddresses() const {
    QStringList addresses;
    for (const auto& address : state.settings.myAddresses.get())
        addresses.push_back(foreign(address));
    return addresses.join(", ");
}

void SettingsBridge::setMyAddresses(const QString& typed) {
    static const QRegularExpression separators("[,;\\s]+");
    static const QRegularExpression address("^[^@<>\"]+@[^@<>\"]+$");
    std::vector<std::string> addresses;
    wrongAddress.clear();
    for (const auto& part : typed.split(separators, Qt::SkipEmptyParts)) {
        if (part.size() > longestAddress || !address.match(part).hasMatch()) {
            wrongAddress = foreign(utf8(part.left(longestAddress))) + " is not an e-mail address.";
            break;
        }
        addresses.push_back(utf8(part));
    }
    if (addresses.size() > mostAddresses)
        wrongAddress = QString("More than %1 addresses cannot be kept.").arg(mostAddresses);
    if (wrongAddress.isEmpty() && addresses != state.settings.myAddresses.get())
        state.setMyAddresses(std::move(addresses));
    emit changed(); // at once: the field keeps what was typed if something is wrong with it
}

void SettingsBridge::setParticipantEnabled(bool isOn) {
    if (participantEnabled() != isOn)
        state.toggleParticipantMonitor();
}

QString SettingsBridge::activeMeeting() const {
    const auto& platform = state.sources.meeting.monitor.activeMeetingPlatform.get();
    return platform ? foreign(*platform) : QString("None");
}

QString SettingsBridge::trialText() const {
    QStringList lines;
    for (const auto& line : state.detectionTrial.lines.get())
        lines.push_back(foreign(line));
    return lines.join('\n');
}

QString SettingsBridge::limitations() const {
    QStringList lines;
    for (const auto& limitation : *state.limitations.all)
        lines.push_back(ours(limitation.text));
    return lines.join('\n');
}

int SettingsBridge::selectedTemplate() const {
    int index = 0;
    for (const auto& [value, raw] : namedCases<ObjectionTemplate>) {
        if (value == state.objections.selectedTemplate.get())
            return index;
        ++index;
    }
    return 0;
}

void SettingsBridge::selectTemplate(int index) {
    const auto& all = namedCases<ObjectionTemplate>;
    if (index >= 0 && index < static_cast<int>(all.size()) && index != selectedTemplate())
        state.objections.selectTemplate(all[static_cast<std::size_t>(index)].value);
}

QString SettingsBridge::preview() const {
    return ours(objectionText(state.objections.selectedTemplate).writtenStatement);
}

QString SettingsBridge::version() const {
    return QCoreApplication::applicationVersion();
}

QString SettingsBridge::address() const {
    return ours(productAddress);
}

void SettingsBridge::openInternetAccounts() {
    help.openInternetAccounts(state);
    watch.schedule();
}

void SettingsBridge::openAccessibilitySettings() {
    help.openAccessibilitySettings(state);
    watch.schedule();
}

void SettingsBridge::removeAllowed(const QString& key) {
    state.removeFromAllowList(utf8(key));
}

void SettingsBridge::copyEvidence() {
    const auto& records = state.objections.objectionLog.records.get();
    QGuiApplication::clipboard()->setText(ours(evidenceAsCsv(records)));
    exported = "Copied to the clipboard";
    watch.schedule();
}

void SettingsBridge::exportEvidence() {
    const auto& records = state.objections.objectionLog.records.get();
    evidenceExport.ask(records, [this](const QString& outcome) {
        exported = outcome;
        watch.schedule();
    });
}

void SettingsBridge::openWebsite() {
    if (!state.openAddress(std::string(productAddress))) {
        noBrowser = "There is no web browser on this computer that could open " + address() + ".";
        watch.schedule();
    }
}

} // namespace quorva
