#include "screens/markdown/MarkdownBlockModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

/// A list that listens to the model alone ends up with what the model has, and is told of nothing but the end.
TEST(MarkdownBlockModelTest, GrowingTextTouchesOnlyTheLastRows) {
    MarkdownBlockModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const QString text =
        u"# Title\n\npara **bold\n\n- a\n- b\n\nhead | er\n---|---\n1 | 2\n\n```py\nx = 1\n```\n\n![i](https://a.b)\nend"_s;
    int first = 0;
    const auto touched = [&](int row) {
        first = std::min(first, row);
    };
    QObject::connect(&model, &QAbstractItemModel::dataChanged, [&](const QModelIndex &from) { touched(from.row()); });
    QObject::connect(&model, &QAbstractItemModel::rowsAboutToBeRemoved, [&](const auto &, int from) { touched(from); });
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, [&](const auto &, int from) { touched(from); });
    const QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    for (const QChar c : text) {
        first = model.rowCount();
        model.append(QString(c));
        EXPECT_GE(first, model.rowCount() - 3);
    }
    model.finish();
    EXPECT_EQ(resets.size(), 0);

    MarkdownBlockModel whole;
    whole.setText(text);
    ASSERT_EQ(model.rowCount(), whole.rowCount());
    for (int row = 0; row < model.rowCount(); ++row)
        EXPECT_EQ(model.block(row), whole.block(row)) << row;
}

TEST(MarkdownBlockModelTest, TellsWhatChangedAndNothingElse) {
    MarkdownBlockModel model;
    model.append(u"one\n\ntwo"_s);
    const QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.append(u" and"_s);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(changes[0][2].value<QList<int>>(), QList<int>{MarkdownBlockModel::TextRole});
    model.append(u""_s);
    model.append(u"\n"_s);
    EXPECT_EQ(changes.size(), 1);

    // A paragraph that turns out to be a table is drawn by another item.
    const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    model.setText(u"one\n\n| two |\n|---|"_s);
    ASSERT_EQ(inserted.size(), 1);
    EXPECT_EQ(inserted[0][1].toInt(), 1);
}

TEST(MarkdownBlockModelTest, LinksAreFoundByWhereTheyStand) {
    MarkdownBlockModel model;
    model.setText(u"[a](http://a) and [b](http://b)"_s);
    EXPECT_EQ(model.nextLink(0, -1), 0);
    EXPECT_EQ(model.nextLink(0, 0), 6);
    EXPECT_EQ(model.nextLink(0, 6), -1);
    EXPECT_EQ(model.previousLink(0, 6), 0);
    EXPECT_EQ(model.previousLink(0, 0), -1);
    EXPECT_EQ(model.linkEnd(0, 6), 7);
    EXPECT_EQ(model.linkUrl(0, 6), u"http://b"_s);
    EXPECT_EQ(model.linkUrl(0, 3), QString());
}

} // namespace lmp
