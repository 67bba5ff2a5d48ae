// The objection log as a file: comma-separated values (RFC 4180) for spreadsheets, JSON for
// programs.
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

/// One line a record after a line of headings; lines end in CR LF. A field that a spreadsheet would
/// interpret as a formula gets an apostrophe in front. Pure function.
[[nodiscard]] std::string evidenceAsCsv(const std::vector<ObjectionRecord>& records);

/// A JSON array of the records in their stored form. Pure function.
[[nodiscard]] std::string evidenceAsJson(const std::vector<ObjectionRecord>& records);

/// Asks for a file name and writes the file. Main thread only; a worker thread writes.
class EvidenceExport {
public:
    /// The loop must outlive this.
    explicit EvidenceExport(MainLoop& loop);
    ~EvidenceExport();

    /// Called on the main loop with the outcome, for people.
    using Outcome = std::function<void(const QString&)>;

    /// Shows the desktop's file dialog, which needs a QApplication, and writes the records to the
    /// chosen file: JSON if its name ends in ".json", otherwise comma-separated values. Calls
    /// `done` when the file was written or could not be written; not when the user cancels.
    void ask(const std::vector<ObjectionRecord>& records, Outcome done);

    /// The same, without the dialog.
    void write(const QString& path, const std::vector<ObjectionRecord>& records, Outcome done);

private:
    MainLoop& loop;
    QPointer<QFileDialog> dialog;
    std::unique_ptr<SerialQueue> queue;
    Lifetime lifetime; // last: destroyed first
};

} // namespace quorva
