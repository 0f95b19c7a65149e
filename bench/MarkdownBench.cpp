// What a growing reply costs: bench_markdown parse|draw|whole KILOBYTES
//
// A reply of so many kilobytes stands there already; then it grows by pieces as large as 100 deltas a second gathered
// to 30 updates, and each is timed on the processor. parse: up to the rows of the model. draw: laid out and painted by
// the software backend, with the end in sight. whole: a text of that size at once.

#include "screens/markdown/MarkdownBlockModel.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>

#include <cstdio>
#include <ctime>

void qml_register_types_Lumenpair_Kit();
void qml_register_types_Lumenpair_Markdown();

namespace lmp::bench {

using namespace Qt::StringLiterals;

namespace {

constexpr int updates = 240;
constexpr qsizetype pieceSize = 24; ///< characters of one update

/// A reply as people get them: paragraphs, a list, code, a table, over and over.
const QString part =
    u"## 接下来的安排\n\n"
    u"你好，我看了你昨天写下的**计划**，整体是可行的；不过有两处时间上有冲突，建议先把 `周三` 的会议挪到下午。\n"
    u"It is easier to move one meeting than three people, and the [calendar](https://example.org/c) has room.\n\n"
    u"- 上午：把**合同**再读一遍，标出不明白的地方\n- 下午：和房东通电话\n  - 确认押金\n  - 确认日期\n- 晚上：休息\n\n"
    u"```python\ndef plan(day: str) -> list[str]:\n    # 按时间排序\n    return sorted(items[day], key=when)\n```\n\n"
    u"| 项目 | 时间 | 地点 |\n|---|---|---|\n| 会议 | 14:00 | 三楼 |\n| 电话 | 16:30 | 家里 |\n\n"
    u"> 先做最重要的一件，其余的会容易许多。\n\n"_s;

QString reply(qsizetype bytes) {
    QString text;
    while (text.toUtf8().size() < bytes)
        text += part;
    return text;
}

double processorMicroseconds() {
    return double(std::clock()) * 1e6 / CLOCKS_PER_SEC;
}

/// The mean cost of one update in microseconds.
template <class Update>
double costOf(const QString &more, Update update) {
    const double before = processorMicroseconds();
    for (int i = 0; i < updates; ++i)
        update(more.sliced(i * pieceSize, pieceSize));
    return (processorMicroseconds() - before) / updates;
}

void parse(qsizetype bytes) {
    MarkdownBlockModel model;
    model.append(reply(bytes));
    const QString more = part.repeated(updates * pieceSize / part.size() + 1);
    std::printf("mean_us=%.1f rows=%d\n", costOf(more, [&](const QString &piece) { model.append(piece); }),
                model.rowCount());
}

void whole(qsizetype bytes) {
    const QString text = reply(bytes);
    const double before = processorMicroseconds();
    MarkdownBlockModel model;
    model.setText(text);
    std::printf("ms=%.1f rows=%d\n", (processorMicroseconds() - before) / 1e3, model.rowCount());
}

void draw(qsizetype bytes) {
    static void (*const volatile modules[])() = {qml_register_types_Lumenpair_Kit,
                                                 qml_register_types_Lumenpair_Markdown};
    for (const auto &module : modules)
        static_cast<void>(module);
    MarkdownBlockModel model;
    model.append(reply(bytes));
    QQuickView view;
    view.engine()->addImportPath(u"qrc:/qt/qml"_s);
    view.setInitialProperties({{u"blocks"_s, QVariant::fromValue(&model)}});
    QQmlComponent component(view.engine());
    component.setData(
        "import QtQuick\nimport Lumenpair.Markdown\nFlickable {\n required property MarkdownBlockModel blocks\n"
        " id: root\n width: 800; height: 700\n contentHeight: body.height\n contentY: contentHeight - height\n"
        " MarkdownView { id: body; blocks: root.blocks; maximumWidth: 760 }\n}",
        QUrl(u"qrc:/bench.qml"_s));
    view.setContent({}, &component,
                    component.createWithInitialProperties({{u"blocks"_s, QVariant::fromValue(&model)}}));
    view.show();
    bool painted = false;
    QObject::connect(&view, &QQuickWindow::frameSwapped, [&] { painted = true; });
    const auto paint = [&] {
        painted = false;
        view.update();
        while (!painted)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    };
    for (int i = 0; i < 5; ++i)
        paint();
    const QString more = part.repeated(updates * pieceSize / part.size() + 1);
    const double cost = costOf(more, [&](const QString &piece) {
        model.append(piece);
        paint();
    });
    std::printf("mean_us=%.1f rows=%d\n", cost, model.rowCount());
}

} // namespace

} // namespace lmp::bench

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication app(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    const QString what = arguments.value(1);
    const qsizetype bytes = arguments.value(2).toLongLong() * 1000;
    if (what == u"parse")
        lmp::bench::parse(bytes);
    else if (what == u"draw")
        lmp::bench::draw(bytes);
    else if (what == u"whole")
        lmp::bench::whole(bytes);
    else
        return 2;
    return 0;
}
