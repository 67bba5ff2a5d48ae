// A list for a view. Every list of the user interface has rows of this one shape.
#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QString>
#include <vector>

namespace quorva {

/// What a row shows; what a list has no use for stays empty.
struct Row {
    QString id;       ///< tells the rows of a list apart, and a row before from the same one after
    QString title;    ///< the product, the banner, the account
    QString subtitle; ///< its category, what triggered it
    QString detail;   ///< platform, time
    QString badge;    ///< a symbol's name, or a short word
    QString note;     ///< what matched; for those who ask
    QString spoken;   ///< how a screen reader names the row
    QString key;      ///< what an operation on the row takes

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

    /// Shows these rows from now on. Rows that were there stay the same rows, so that what the
    /// pointer or the keyboard is at stays where it is. Of rows with one id the first counts.
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
