// Our side of the event benchmarks: bench_event_reader URL chat|timed|drop
//
// chat: the frames of a streamed reply, as the conversation decodes them, the deltas into one text. timed: frames that
// say when they were sent. drop: as chat, but the deltas are only counted, so that what grows is the client's own.

#include "conversation/ChatStreamFrame.h"
#include "core/Detach.h"
#include "core/SSEClient.h"

#include "Report.h"

#include <QCoreApplication>

namespace lmp {

using namespace Qt::StringLiterals;

/// The deltas so far, or only how long they are.
struct Text {
    bool kept = true;
    QString text = {};
    qint64 size = 0;

    void add(const QString &delta) {
        size += delta.size();
        if (kept)
            text += delta;
    }
};

/// A delta that says when it was sent.
struct TimedFrame {
    std::optional<qint64> t; ///< monotonic clock, ns
    std::optional<QString> delta;
};
BOOST_DESCRIBE_STRUCT(TimedFrame, (), (t, delta))

namespace {

template <class Frame>
QCoro::Task<> readEvents(SSEStream stream, Text text, bench::Report *report) {
    const long before = bench::Report::peak();
    for (;;) {
        auto next = co_await stream.next();
        if (!next || !*next) {
            report->print(text.size);
            std::printf("growth_kb=%ld\n", bench::Report::peak() - before);
            QCoreApplication::exit(next ? 0 : 1);
            co_return;
        }
        const QByteArray &data = (*next)->data;
        ++report->events;
        report->bytes += data.size();
        const auto frame = Json::decode<Frame>(data);
        if (!frame)
            continue;
        if (frame->delta)
            text.add(*frame->delta);
        if constexpr (requires { frame->t; }) {
            if (frame->t)
                report->tookSince(*frame->t);
        }
    }
}

} // namespace

} // namespace lmp

int main(int argc, char **argv) {
    using namespace lmp;
    QCoreApplication app(argc, argv);
    if (argc != 3)
        return 2;
    const QUrl url(QString::fromLocal8Bit(argv[1]));
    const SSEClient client(url.adjusted(QUrl::RemovePath | QUrl::RemoveQuery), {});
    const QString path = url.path() + u'?' + url.query();
    bench::Report report;
    report.start();
    const QByteArray mode = argv[2];
    detach(mode == "timed" ? readEvents<TimedFrame>(client.stream(path), Text(), &report)
                           : readEvents<ChatStreamFrame>(client.stream(path), Text{.kept = mode == "chat"}, &report),
           "reading events");
    return QCoreApplication::exec();
}
