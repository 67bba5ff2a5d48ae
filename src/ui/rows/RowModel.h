// A list for a view. Every list of the user interface has this kind of row.
#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QString>
#include <vector>

namespace quorva {

/// The contents of a row; a list leaves the fields it does not use empty.
struct Row {
    QString id;       ///< unique in a list, and the same before and after an update
    QString title;    ///< the product, the banner, the account
    QString subtitle; ///< its category, what triggered it
    QString detail;   ///< platform, time
    QString badge;    ///< a symbol's name, or a few words
    QString note;     ///< what matched; for tooltips
    QString spoken;   ///< how a screen reader names the row
    QString key;      ///< the argument of operations on the row

    bool operator==(const Row&) const = default;
};

/// Main thread only.
class RowModel final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int count() const { return static_cast<int>(rows.size()); }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Shows these rows from now on. Rows that stay keep their identity, so that the pointer and
    /// the keyboard focus stay with them. Of rows with the same id only the first is shown.
    void show(std::vector<Row> next);

signals:
    void countChanged();

private:
    void removeAllBut(const std::vector<Row>& next);
    void place(Row row, int at);
    [[nodiscard]] int indexOf(const QString& id, int from) const;

    std::vector<Row> rows;
};

} // namespace quorva
