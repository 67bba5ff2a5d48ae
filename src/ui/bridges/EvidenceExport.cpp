#include "ui/bridges/EvidenceExport.h"

#include "catalogue/RecordJson.h"
#include "ui/rows/DisplayText.h"

#include <nlohmann/json.hpp>

#include <QDir>
#include <QFileDialog>
#include <QSaveFile>
#include <string_view>
#include <utility>

namespace quorva {

namespace {

/// A spreadsheet interprets text with such a prefix as a formula, and a bot chooses its own name.
bool looksLikeFormula(std::string_view text) {
    constexpr std::string_view beginnings = "=+-@\t\r";
    return !text.empty() && beginnings.find(text.front()) != std::string_view::npos;
}

std::string field(std::string_view text) {
    std::string quoted = "\"";
    if (looksLikeFormula(text))
        quoted += '\'';
    for (const char c : text) {
        if (c == '"')
            quoted += '"';
        quoted += c;
    }
    return quoted + '"';
}

QString save(const QString& path, const std::string& bytes) {
    QSaveFile file(path);
    const auto size = static_cast<qint64>(bytes.size());
    if (file.open(QIODevice::WriteOnly) && file.write(bytes.data(), size) == size && file.commit())
        return "Exported to " + QDir::toNativeSeparators(path);
    return "The file could not be written: " + file.errorString();
}

} // namespace

std::string evidenceAsCsv(const std::vector<ObjectionRecord>& records) {
    std::string csv = "Time,Template,Bot,Meeting,Source,Copied to clipboard,Identifier\r\n";
    for (const auto& record : records) {
        const std::string source(record.source ? rawValue(*record.source) : "");
        for (const std::string& text :
             {iso8601(record.timestamp), record.templateUsed, record.botName.value_or(""),
              record.meetingContext.value_or(""), source,
              std::string(record.copiedToClipboard ? "yes" : "no")})
            csv += field(text) + ',';
        csv += field(record.id) + "\r\n";
    }
    return csv;
}

std::string evidenceAsJson(const std::vector<ObjectionRecord>& records) {
    auto array = nlohmann::ordered_json::array();
    for (const auto& record : records)
        array.push_back(toJson(record));
    return array.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

EvidenceExport::EvidenceExport(MainLoop& loop_) : loop(loop_) {}

EvidenceExport::~EvidenceExport() {
    delete dialog;
}

void EvidenceExport::ask(const std::vector<ObjectionRecord>& records, Outcome done) {
    delete dialog;
    dialog = new QFileDialog(nullptr, "Export Evidence Log", QDir::homePath());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters({"Comma-separated values (*.csv)", "JSON (*.json)"});
    dialog->setDefaultSuffix("csv");
    dialog->selectFile("quorva-evidence-log.csv");
    QObject::connect(dialog, &QFileDialog::filterSelected, dialog,
                     [box = dialog.data()](const QString& filter) {
                         box->setDefaultSuffix(filter.startsWith("JSON") ? "json" : "csv");
                     });
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog,
                     [this, records, done = std::move(done)](const QString& path) {
                         write(path, records, done);
                     });
    dialog->open();
}

void EvidenceExport::write(const QString& path, const std::vector<ObjectionRecord>& records,
                           Outcome done) {
    if (!queue)
        queue = std::make_unique<SerialQueue>(8);
    const bool isJson = path.endsWith(".json", Qt::CaseInsensitive);
    auto bytes = isJson ? evidenceAsJson(records) : evidenceAsCsv(records);
    // Guarded on this thread: a Lifetime belongs to one thread.
    auto report = lifetime.guard(std::move(done));
    const bool isAccepted = queue->post([&mainLoop = loop, path, bytes = std::move(bytes), report] {
        mainLoop.post([outcome = save(path, bytes), report] { report(outcome); });
    });
    if (!isAccepted)
        loop.post([report] { report("The file could not be written: the disk is too slow."); });
}

} // namespace quorva
