// Drafts: bench_drafts kill N | sends N | grid | race WRITERS N | durable N | typing N
#include "screens/chat/ComposerInputs.h"
#include "support/DraftTrials.h"

#include "core/Detach.h"
#include "platform/SystemClock.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <unistd.h>
#include <vector>

using namespace lmp;
using namespace Qt::StringLiterals;
using Steady = std::chrono::steady_clock;

namespace {

double microseconds(Steady::time_point since) {
    return std::chrono::duration<double, std::micro>(Steady::now() - since).count();
}

double at(std::vector<double> values, double share) {
    if (values.empty())
        return 0;
    std::ranges::sort(values);
    return values[std::size_t(share * double(values.size() - 1))];
}

int kill(const QString &folder, int kills) {
    const auto one = DraftTrials::kill(folder, kills);
    std::printf("kills=%d mid_save=%d acknowledged=%lld lost=%d torn=%d left=%d looks=%lld open=%lld\n", one.kills,
                one.midSave, one.acknowledged, one.lost, one.torn, one.leftBeside, one.looks, one.open);
    return 0;
}

int sends(const QString &folder, int kills) {
    const auto one = DraftTrials::killSends(folder + u"/sends"_s, kills);
    std::printf("kills=%d typed=%lld lost=%d both=%d\n", one.kills, one.typed, one.lost, one.both);
    return 0;
}

int grid(const QString &folder) {
    const auto one = DraftTrials::grid(folder);
    std::fputs(one.wrong.toUtf8().constData(), stderr);
    std::printf("cells=%d reported=%d survived=%d wrong=%lld widest=%u\n", one.cells, one.reported, one.survived,
                one.wrong.count(u'\n'), one.widest);
    return 0;
}

int race(const QString &folder, int writers, int saves) {
    const auto one = DraftTrials::race(folder, writers, saves);
    std::printf("saves=%lld landed=%lld elsewhere=%lld failed=%lld lost=%lld seconds=%.1f\n", one.saves, one.landed,
                one.changedElsewhere, one.failed, one.lostUpdates, one.seconds);
    return 0;
}

/// What a durable save costs at the least: a new file, flushed, renamed into place, its folder flushed.
bool bare(const QByteArray &path, const QByteArray &bytes) {
    const QByteArray aside = path + ".tmp", folder = path.first(path.lastIndexOf('/'));
    const int fd = ::open(aside.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    bool good = fd >= 0 && ::write(fd, bytes.constData(), size_t(bytes.size())) == bytes.size() && ::fsync(fd) == 0;
    good = ::close(fd) == 0 && good && ::rename(aside.constData(), path.constData()) == 0;
    const int dir = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    good = dir >= 0 && ::fsync(dir) == 0 && good;
    ::close(dir);
    return good;
}

bool withSaveFile(const QString &path, const QByteArray &bytes) {
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

/// Each way in turns, so that whatever else the disk does falls on all of them.
int durable(const QString &folder, int saves) {
    const QByteArray bytes(2000, 'x');
    const ConversationInputDraftStore store(ApplicationSupport::at(folder));
    ConversationInputDraftStore::Entry entry;
    entry.id = u"c"_s;
    entry.input.text = QString::fromLatin1(bytes.first(1800));
    std::optional<QString> known;
    const std::vector<std::function<bool()>> ways{
        [&] { return bare(QFile::encodeName(folder + u"/bare"_s), bytes); },
        [&] { return AtomicFile::write(folder + u"/ours"_s, bytes).has_value(); },
        [&] { return withSaveFile(folder + u"/qt"_s, bytes); },
        [&] {
            const auto saved = store.save(u"u"_s, entry, known, QDateTime::currentDateTimeUtc());
            known = saved.value_or(known);
            return saved.has_value();
        },
    };
    std::vector<std::vector<double>> took(ways.size());
    for (int number = 0; number < saves; ++number) {
        for (std::size_t way = 0; way < ways.size(); ++way) {
            const auto since = Steady::now();
            if (!ways[way]())
                return std::fprintf(stderr, "way %zu failed\n", way), 1;
            took[way].push_back(microseconds(since));
        }
    }
    std::printf("bare_us=%.1f ours_us=%.1f qt_us=%.1f store_us=%.1f\n", at(took[0], 0.5), at(took[1], 0.5),
                at(took[2], 0.5), at(took[3], 0.5));
    return 0;
}

/// Notes how long each event held the thread that all windows live on.
class WatchedApplication : public QCoreApplication {
public:
    using QCoreApplication::QCoreApplication;
    bool notify(QObject *receiver, QEvent *event) override {
        if (m_depth++ > 0)
            return leave(QCoreApplication::notify(receiver, event));
        const auto since = Steady::now();
        const bool done = QCoreApplication::notify(receiver, event);
        held.push_back(microseconds(since));
        return leave(done);
    }
    std::vector<double> held;

private:
    bool leave(bool result) {
        --m_depth;
        return result;
    }
    int m_depth = 0;
};

/// Types a character each 3 ms into a box of 20,000, with the real clock and the real disk.
int typing(WatchedApplication &application, const QString &folder, int keys) {
    SystemClock clock;
    ComposerInputs inputs(ConversationInputDraftStore(ApplicationSupport::at(folder)), clock);
    std::vector<double> key;
    QString text(20'000, u'字');
    int saves = 0;
    QObject::connect(&inputs, &ComposerInputs::stateChanged, [&] { ++saves; });
    inputs.open(u"u"_s);
    inputs.moveTo({.id = u"c"_s, .title = u"题"_s, .cloudRevision = 1});
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, [&] {
        text += u'字';
        const auto since = Steady::now();
        inputs.setText(text);
        key.push_back(microseconds(since));
        if (int(key.size()) == keys)
            QCoreApplication::quit();
    });
    timer.start(3);
    application.held.clear();
    QCoreApplication::exec();
    std::printf("keys=%zu saves=%d key_p99_us=%.1f key_max_us=%.1f held_p99_us=%.1f held_max_us=%.1f\n", key.size(),
                saves, at(key, 0.99), at(key, 1), at(application.held, 0.99), at(application.held, 1));
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    const QByteArray what = argc > 1 ? argv[1] : "";
    const int number = argc > 2 ? std::atoi(argv[2]) : 0;
    // On the disk that the program lies on: a folder for passing files may be memory.
    const QString wanted = qEnvironmentVariable("LMP_BENCH_FOLDER");
    const QTemporaryDir folder((wanted.isEmpty() ? QFileInfo(QString::fromLocal8Bit(argv[0])).absolutePath() : wanted) +
                               u"/drafts-XXXXXX"_s);
    const QString path = folder.path();
    if (what == "kill" && number > 0)
        return kill(path, number);
    if (what == "sends" && number > 0)
        return sends(path, number);
    if (what == "grid")
        return grid(path);
    if (what == "race" && number > 0 && argc > 3)
        return race(path, number, std::atoi(argv[3]));
    if (what == "durable" && number > 0)
        return durable(path, number);
    WatchedApplication application(argc, argv);
    if (what == "typing" && number > 0)
        return typing(application, path, number);
    std::fputs("bench_drafts kill N | sends N | grid | race WRITERS N | durable N | typing N\n", stderr);
    return 2;
}
