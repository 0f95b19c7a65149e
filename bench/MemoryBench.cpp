// What a key costs in the field that finds memories, with 10,000 of them: ours beside a QSortFilterProxyModel.
//
// Each iteration types one of a few queries, of one to three characters and of none, and reads the rows that a window
// shows.

#include "screens/memory/MemoryItemsModel.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QSortFilterProxyModel>
#include <QStringListModel>

#include <algorithm>

namespace lmp::bench {

using namespace Qt::StringLiterals;

namespace {

constexpr int memories = 10'000;
constexpr int visibleRows = 12;

/// From one match in three to none.
const QStringList queries{u"江"_s, u"江边"_s, u"江边散"_s, {}, u"9"_s, u"99"_s, u"999"_s, {}, u"没有的"_s, {}};

QList<MemoryItemDTO> items() {
    const QStringList said{
        u"喜欢在江边散步，尤其是早上人少的时候"_s, u"Prefers short answers when talking about code"_s,
        u"住在江北，周末坐轻轨出门，路上听播客"_s, u"不喜欢别人催，做决定要先睡一觉"_s,
        u"说过小时候养过一只猫，叫墨墨"_s,         u"最近在学做饭，拿手的是番茄炒蛋"_s};
    QList<MemoryItemDTO> all;
    for (int number = 0; number < memories; ++number) {
        MemoryItemDTO item;
        item.id = u"m%1"_s.arg(number);
        item.content = said[number % said.size()] + u"（%1）"_s.arg(number);
        item.source = u"你确认的候选"_s;
        item.scope = u"全部"_s;
        all << item;
    }
    return all;
}

void read(const QAbstractItemModel &model, int role) {
    for (int row = 0; row < std::min(visibleRows, model.rowCount()); ++row)
        benchmark::DoNotOptimize(model.data(model.index(row, 0), role));
}

void ours(benchmark::State &state) {
    MemoryItemsModel model;
    const auto all = items();
    model.setItems(all, MemoryItemsModel::foldAll(all));
    qsizetype key = 0;
    for (auto _ : state) {
        model.setQuery({.kind = MemoryItemsModel::Kind::All, .text = queries[key++ % queries.size()]});
        read(model, MemoryItemsModel::ContentRole);
    }
    model.setQuery({.kind = MemoryItemsModel::Kind::All, .text = u"江边"_s});
    if (model.count() + model.hidden() != (memories + 5) / 6)
        state.SkipWithError("did not find what there is");
}

void proxy(benchmark::State &state) {
    QStringList texts;
    for (const auto &item : items())
        texts << item.content;
    QStringListModel source(texts);
    QSortFilterProxyModel model;
    model.setFilterCaseSensitivity(Qt::CaseInsensitive);
    model.setSourceModel(&source);
    qsizetype key = 0;
    for (auto _ : state) {
        model.setFilterFixedString(queries[key++ % queries.size()]);
        read(model, Qt::DisplayRole);
    }
    model.setFilterFixedString(u"江边"_s);
    if (model.rowCount() != (memories + 5) / 6)
        state.SkipWithError("did not find what there is");
}

/// What is done once, when the ledger arrives, and not on the thread of the window.
void folding(benchmark::State &state) {
    const auto all = items();
    for (auto _ : state)
        benchmark::DoNotOptimize(MemoryItemsModel::foldAll(all));
}

BENCHMARK(ours)->Unit(benchmark::kMicrosecond);
BENCHMARK(proxy)->Unit(benchmark::kMicrosecond);
BENCHMARK(folding)->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace lmp::bench

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
