// The objection log as a file that others can read: comma-separated values (RFC 4180) for
// spreadsheets, JSON for programs.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/SerialQueue.h"
#include "catalogue/Records.h"

#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QFileDialog;

namespace quorva {

/// One line a record after a line of headings, each ended by CR LF. A field that a spreadsheet
/// would take for a formula begins with an apostrophe. Pure function.
[[nodiscard]] std::string evidenceAsCsv(const std::vector<ObjectionRecord>& records);

/// An array of the records, as they are stored. Pure function.
[[nodiscard]] std::string evidenceAsJson(const std::vector<ObjectionRecord>& records);

/// Asks where to, and writes. Main thread only; the file is written on another one.
class EvidenceExport {
public:
    /// The loop must outlive this.
    explicit EvidenceExport(MainLoop& loop);
    ~EvidenceExport();

    /// Called on the main loop with what it has come to, for people.
    using Outcome = std::function<void(const QString&)>;

    /// Shows the desktop's file dialog, which needs a QApplication, and writes the records to the
    /// file that is chosen: JSON when its name ends in ".json", else comma-separated values.
    /// Calls `done` when it has been written, or could not be; not when nothing is chosen.
    void ask(const std::vector<ObjectionRecord>& records, Outcome done);

    /// The same without asking.
    void write(const QString& path, const std::vector<ObjectionRecord>& records, Outcome done);

private:
    MainLoop& loop;
    QPointer<QFileDialog> dialog;
    std::unique_ptr<SerialQueue> queue;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
