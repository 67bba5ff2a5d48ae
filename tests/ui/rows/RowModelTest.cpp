// Lists are updated in place: rows that stay keep their identity.
#include "ui/rows/RowModel.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <algorithm>
#include <random>

namespace quorva {
namespace {

using testing::ElementsAre;

std::vector<Row> rowsNamed(const std::vector<std::string>& ids) {
    std::vector<Row> rows;
    for (const auto& id : ids)
        rows.push_back({.id = QString::fromStdString(id), .title = QString::fromStdString(id)});
    return rows;
}

std::vector<std::string> idsOf(const RowModel& model) {
    std::vector<std::string> ids;
    for (int at = 0; at < model.count(); ++at)
        ids.push_back(model.data(model.index(at), Qt::UserRole).toString().toStdString());
    return ids;
}

TEST(RowModel, aChangedRowIsToldOfAndNothingElse) {
    RowModel model;
    model.show(rowsNamed({"a", "b", "c"}));
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy insertions(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    auto next = rowsNamed({"a", "b", "c"});
    next[1].title = "B";
    model.show(next);
    model.show(next);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(insertions.size() + resets.size(), 0);
}

TEST(RowModel, aRepeatedIdCountsOnce) {
    RowModel model;
    model.show(rowsNamed({"a", "b", "a"}));
    EXPECT_THAT(idsOf(model), ElementsAre("a", "b"));
}

/// What a view that follows the model's signals would show.
class Mirror {
public:
    explicit Mirror(RowModel& model) {
        QObject::connect(&model, &RowModel::rowsInserted, &context,
                         [this, &model](const QModelIndex&, int first, int last) {
                             for (int at = first; at <= last; ++at)
                                 ids.insert(ids.begin() + at, idsOf(model)[std::size_t(at)]);
                         });
        QObject::connect(&model, &RowModel::rowsRemoved, &context,
                         [this](const QModelIndex&, int first, int last) {
                             ids.erase(ids.begin() + first, ids.begin() + last + 1);
                         });
        QObject::connect(&model, &RowModel::rowsMoved, &context,
                         [this](const QModelIndex&, int from, int, const QModelIndex&, int to) {
                             std::rotate(ids.begin() + to, ids.begin() + from,
                                         ids.begin() + from + 1);
                         });
    }

    std::vector<std::string> ids;

private:
    QObject context;
};

TEST(RowModel, whateverListFollowsWhichAViewIsToldEnough) {
    RowModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    const Mirror mirror(model);
    std::mt19937 random(7);
    std::vector<std::string> pool;
    for (int each = 0; each < 200; ++each)
        pool.push_back("row " + std::to_string(each));
    for (int round = 0; round < 60; ++round) {
        std::shuffle(pool.begin(), pool.end(), random);
        const auto count = static_cast<std::ptrdiff_t>(random() % pool.size());
        const std::vector<std::string> next(pool.begin(), pool.begin() + count);
        model.show(rowsNamed(next));
        ASSERT_EQ(idsOf(model), next);
        ASSERT_EQ(mirror.ids, next);
    }
}

} // namespace
} // namespace quorva
