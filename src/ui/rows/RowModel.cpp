#include "ui/rows/RowModel.h"

#include <QSet>
#include <algorithm>
#include <array>
#include <utility>

namespace quorva {

namespace {

struct RowRole {
    const char* name;
    QString Row::*field;
};

constexpr std::array rowRoles{
    RowRole{"rowId", &Row::id},          RowRole{"title", &Row::title},
    RowRole{"subtitle", &Row::subtitle}, RowRole{"detail", &Row::detail},
    RowRole{"badge", &Row::badge},       RowRole{"note", &Row::note},
    RowRole{"spoken", &Row::spoken},     RowRole{"key", &Row::key},
};

std::vector<Row> withoutRepeated(std::vector<Row> rows) {
    QSet<QString> seen;
    std::erase_if(rows, [&seen](const Row& row) {
        if (seen.contains(row.id))
            return true;
        seen.insert(row.id);
        return false;
    });
    return rows;
}

} // namespace

int RowModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant RowModel::data(const QModelIndex& index, int role) const {
    const int field = role - Qt::UserRole;
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || field < 0 ||
        field >= static_cast<int>(rowRoles.size()))
        return {};
    return rows[static_cast<std::size_t>(index.row())].*
           rowRoles[static_cast<std::size_t>(field)].field;
}

QHash<int, QByteArray> RowModel::roleNames() const {
    QHash<int, QByteArray> names;
    int role = Qt::UserRole;
    for (const auto& each : rowRoles)
        names[role++] = each.name;
    return names;
}

void RowModel::show(std::vector<Row> next) {
    const int before = count();
    next = withoutRepeated(std::move(next));
    removeAllBut(next);
    int at = 0;
    for (auto& row : next)
        place(std::move(row), at++);
    if (count() != before)
        emit countChanged();
}

void RowModel::removeAllBut(const std::vector<Row>& next) {
    QSet<QString> kept;
    for (const auto& row : next)
        kept.insert(row.id);
    for (int at = count() - 1; at >= 0; --at) {
        if (kept.contains(rows[static_cast<std::size_t>(at)].id))
            continue;
        beginRemoveRows({}, at, at);
        rows.erase(rows.begin() + at);
        endRemoveRows();
    }
}

void RowModel::place(Row row, int at) {
    const int found = indexOf(row.id, at);
    if (found < 0) {
        beginInsertRows({}, at, at);
        rows.insert(rows.begin() + at, std::move(row));
        endInsertRows();
        return;
    }
    if (found != at) {
        beginMoveRows({}, found, found, {}, at);
        std::rotate(rows.begin() + at, rows.begin() + found, rows.begin() + found + 1);
        endMoveRows();
    }
    auto& present = rows[static_cast<std::size_t>(at)];
    if (present == row)
        return;
    present = std::move(row);
    emit dataChanged(index(at), index(at));
}

int RowModel::indexOf(const QString& id, int from) const {
    for (int at = from; at < count(); ++at)
        if (rows[static_cast<std::size_t>(at)].id == id)
            return at;
    return -1;
}

} // namespace quorva
