// The window's chat without the window: opening a long conversation, and one more piece of a reply that is long
// already.

#include "screens/chat/MessageListModel.h"

#include "conversation/ChatWithTwinView.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <ctime>

namespace lmp::bench {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A clock that goes on far enough between two readings that nothing waits to be told.
class LeapingClock : public Clock {
public:
    QDateTime now() const override { return m_now; }
    std::chrono::nanoseconds monotonic() const override { return m_monotonic += 50ms; }
    QCoro::Task<bool> sleep(std::chrono::milliseconds, std::stop_token) override { co_return true; }

private:
    QDateTime m_now = QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC);
    mutable std::chrono::nanoseconds m_monotonic{0};
};

/// A chat with nothing on the other side: what is sent stays under way, since nothing runs the event loop.
struct Chat {
    QTemporaryDir folder;
    LeapingClock clock;
    APIClient api{QUrl(u"http://127.0.0.1:1/api"_s), [] {
                      return QString();
                  }};
    SafetyGateStore safety;
    ConversationSession session{ConversationService(api),
                                ConversationDraftCache(ApplicationSupport::at(folder.path())),
                                {[] { return std::optional(u"u"_s); },
                                 [] {
                                     return u"s"_s;
                                 }},
                                clock};
    ChatWithTwinView view{session, safety, api, SSEClient(api.base, api.tokenProvider), {}};

    /// Incognito, so that nothing is written to the disk meanwhile.
    Chat() { session.begin({}, true); }

    void say(TalkRole role, const QString &text, const std::optional<QString> &answered = {}) {
        session.edit([&](ConversationDTO &conversation) {
            ConvMessageDTO message;
            message.id = QString::number(conversation.messages.size());
            message.role = role;
            message.text = text;
            message.replyToUserMessageId = answered;
            conversation.messages.push_back(message);
        });
    }
};

/// Markdown as a reply has it: paragraphs with a list now and then.
QString replyOf(qsizetype size) {
    const QString paragraph = u"那天下雨，你说想喝一杯热的，后来我们走了很远的路。**记得**那家店吗？它还在。\n\n"_s +
                              u"- 先看看天气\n- 再决定去哪\n- `带伞`\n\n"_s;
    QString text;
    while (text.size() < size)
        text += paragraph;
    return text.first(size);
}

/// What a view asks of the rows it makes.
void readRows(const MessageListModel &model, int first, int last) {
    const auto roles = model.roleNames().keys();
    for (int row = first; row <= last; ++row) {
        for (const int role : roles)
            benchmark::DoNotOptimize(model.data(model.index(row), role));
    }
}

/// Seconds that this thread has had of a processor: what else runs here is not ours.
double spent() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

/// The model of a conversation that is there, and the rows that fill a window of it.
void opening(benchmark::State &state) {
    Chat chat;
    const QString reply = replyOf(600);
    chat.session.edit([&](ConversationDTO &conversation) {
        for (qsizetype number = 0; number < state.range(0); ++number) {
            ConvMessageDTO message;
            message.id = QString::number(number);
            message.role = number % 2 ? TalkRole::twin : TalkRole::user;
            message.text = number % 2 ? reply : u"在吗"_s;
            conversation.messages.push_back(message);
        }
    });
    for (auto _ : state) {
        MessageListModel model(chat.session, chat.view, chat.clock);
        const int last = model.rowCount() - 1;
        readRows(model, last - 12, last);
    }
}

/// One piece of a reply that has the given length.
void growing(benchmark::State &state) {
    constexpr int pieces = 500;
    const QString piece = u"再多说一点点，"_s;
    for (auto _ : state) {
        Chat chat;
        MessageListModel model(chat.session, chat.view, chat.clock);
        const auto sent = chat.view.send(u"在吗"_s);
        chat.say(TalkRole::twin, replyOf(state.range(0)), sent.value().messageId);
        const int row = model.rowCount() - 1;
        const QString id = chat.session.conversation()->messages.last().id;
        const auto *blocks = model.blocksFor(id);
        // What a view does with a block that has changed.
        const auto read = [blocks](int first, int last) {
            for (int block = first; block <= last; ++block) {
                for (const int role : {MarkdownBlockModel::KindRole, MarkdownBlockModel::TextRole})
                    benchmark::DoNotOptimize(blocks->data(blocks->index(block), role));
            }
        };
        QObject::connect(blocks, &QAbstractItemModel::dataChanged, blocks,
                         [&](const auto &from, const auto &to) { read(from.row(), to.row()); });
        QObject::connect(blocks, &QAbstractItemModel::rowsInserted, blocks,
                         [&](const auto &, int first, int last) { read(first, last); });
        const double start = spent();
        for (int number = 0; number < pieces; ++number) {
            chat.session.appendText(id, number % 20 ? piece : u"\n\n"_s);
            Q_EMIT chat.view.deltaReceived(piece);
        }
        state.SetIterationTime((spent() - start) / pieces);
        if (!model.data(model.index(row), MessageListModel::TextRole).toString().endsWith(piece))
            state.SkipWithError("the reply did not grow");
    }
}

BENCHMARK(opening)->Arg(100)->Arg(10'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(growing)->Arg(10'000)->Arg(100'000)->UseManualTime()->Iterations(40)->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace lmp::bench

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
