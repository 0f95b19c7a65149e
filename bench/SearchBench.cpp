// What a question to the search index costs: bench_search FOLDER
//
// 100,000 messages, most of their text Chinese, are put into our index and into two tables as one would make them
// without it: FTS5 with its trigram tokeniser, and a plain one looked through with LIKE. Then the same questions go to
// all three, in turns. Each asks for the latest fifty messages and how many there are.

#include "conversation/ConversationSearchIndex.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <vector>

namespace lmp::bench {

using namespace Qt::StringLiterals;

namespace {

constexpr int conversations = 500;
constexpr int messagesEach = 200;
constexpr int rounds = 15;

/// Words as frequent as in a language: the n-th comes once for n times the first.
class Author {
public:
    Author() {
        for (int i = 0; i < words; ++i)
            m_weights.push_back(1.0 / (i + 3));
        m_pick = std::discrete_distribution<int>(m_weights.begin(), m_weights.end());
        std::uniform_int_distribution<int> character(0, characters - 1), length(1, 3);
        const QString usual =
            u"的一是不了在人有我他这中大来上个国说们为你时要就出会可也对生能而子那得于着下自之年过发后作"_s;
        for (int i = 0; i < words; ++i) {
            if (i < usual.size()) {
                m_words.push_back(usual.sliced(i, 1));
                continue;
            }
            QString word;
            for (int left = length(m_random); left > 0; --left) {
                const int c = std::min(character(m_random), character(m_random));
                word += c < usual.size() ? usual.at(c) : QChar(0x4e00 + c * 5);
            }
            m_words.push_back(i % 12 == 7 ? u" plan "_s.replace(u"an"_s, QString(QChar(u'a' + i % 26)) + u"n"_s)
                                          : word);
        }
    }
    QString write(int pieces) {
        QString text;
        while (pieces-- > 0)
            text += m_words.at(m_pick(m_random)) + (m_random() % 8 == 0 ? u"，"_s : QString());
        return text + u'。';
    }
    const QString &word(int rank) const { return m_words.at(rank); }

private:
    static constexpr int words = 20'000;
    static constexpr int characters = 3'000;
    std::mt19937 m_random{7};
    std::vector<double> m_weights;
    std::discrete_distribution<int> m_pick;
    std::vector<QString> m_words;
};

double milliseconds(const std::function<void()> &work) {
    const auto from = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - from).count();
}

struct Peer {
    SQLite::Database database;
    std::string count, page;

    qint64 ask(const std::string &question) {
        SQLite::Statement all(database, count);
        all.bind(1, question);
        all.executeStep();
        SQLite::Statement latest(database, page);
        latest.bind(1, question);
        while (latest.executeStep())
            static_cast<void>(latest.getColumn(1).getString());
        return all.getColumn(0).getInt64();
    }
};

void fill(ConversationSearchIndex &index, Peer &like, Peer &trigram, Author &author) {
    like.database.exec("PRAGMA journal_mode=WAL; CREATE TABLE message(place INTEGER PRIMARY KEY, text TEXT); BEGIN");
    trigram.database.exec(
        "PRAGMA journal_mode=WAL; CREATE VIRTUAL TABLE message USING fts5(text, tokenize='trigram'); BEGIN");
    SQLite::Statement plain(like.database, "INSERT INTO message(text) VALUES(?)");
    SQLite::Statement grams(trigram.database, "INSERT INTO message(text) VALUES(?)");
    double ours = 0, theirs = 0;
    qsizetype units = 0;
    for (int c = 0; c < conversations; ++c) {
        ConversationDTO conversation;
        conversation.id = QString::number(c);
        conversation.title = author.write(3);
        for (int m = 0; m < messagesEach; ++m) {
            ConvMessageDTO message;
            message.id = QString::number(m);
            message.role = m % 2 ? TalkRole::twin : TalkRole::user;
            message.text = author.write(m % 2 ? 45 : 8);
            units += message.text.size();
            conversation.messages.push_back(message);
        }
        ours += milliseconds([&] {
            for (auto done = index.put(conversation, ConversationSearchIndex::Age::latest); !done.value_or(true);)
                done = index.put(conversation, ConversationSearchIndex::Age::latest);
        });
        for (const auto &message : std::as_const(conversation.messages)) {
            plain.reset();
            plain.bind(1, message.text.toStdString());
            plain.exec();
            theirs += milliseconds([&] {
                grams.reset();
                grams.bind(1, message.text.toStdString());
                grams.exec();
            });
        }
    }
    like.database.exec("COMMIT");
    theirs += milliseconds([&] { trigram.database.exec("COMMIT"); });
    std::printf("messages=%d units=%lld put_ms=%.0f trigram_put_ms=%.0f\n", conversations * messagesEach,
                static_cast<long long>(units), ours, theirs);
}

} // namespace

void run(const QString &folder) {
    ConversationSearchIndex index(folder + u"/ours.sqlite"_s);
    index.discard();
    for (const char *name : {"/like.sqlite", "/trigram.sqlite"})
        std::remove((folder.toStdString() + name).c_str());
    const auto open = [&](const char *name) {
        return SQLite::Database(folder.toStdString() + name, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    };
    Peer like{open("/like.sqlite"), "SELECT count(*) FROM message WHERE text LIKE '%' || ? || '%'",
              "SELECT place, text FROM message WHERE text LIKE '%' || ? || '%' ORDER BY place DESC LIMIT 50"};
    Peer trigram{open("/trigram.sqlite"), "SELECT count(*) FROM message WHERE message MATCH '\"' || ? || '\"'",
                 "SELECT rowid, text FROM message WHERE message MATCH '\"' || ? || '\"' ORDER BY rowid DESC LIMIT 50"};
    Author author;
    fill(index, like, trigram, author);
    // By how many characters, the frequent and the rare, those that are not there, and Latin ones.
    const std::map<int, QStringList> questions{
        {1,
         {u"的"_s, u"一"_s, u"国"_s, QString(QChar(0x4e00 + 700 * 5)), QString(QChar(0x4e00 + 2999 * 5)), u"鿿"_s,
          u"p"_s}},
        {2, {author.word(0).left(1) + author.word(1).left(1), u"的一"_s, u"我们"_s, u"人国"_s, u"龥龥"_s, u"pl"_s}},
        {3, {u"的一是"_s, u"一的一"_s, author.word(10) + author.word(2), u"pla"_s, u"龥龥龥"_s, u"一，的"_s}},
        {6, {author.word(0) + author.word(1) + author.word(2) + author.word(3), u"的一的一的一"_s, u"plan 的"_s}}};
    for (const auto &[length, all] : questions) {
        std::vector<double> oursAll, likeAll, trigramAll;
        qint64 mismatches = 0;
        for (const QString &question : all) {
            const SearchTerms terms(question);
            std::vector<double> ours, scan, theirs;
            qint64 found = 0, expected = 0;
            for (int round = 0; round <= rounds; ++round) {
                const double one = milliseconds([&] { found = index.find(terms, {}, 50)->total; });
                const bool peers = round <= 3;
                const double two = peers ? milliseconds([&] { expected = like.ask(question.toStdString()); }) : 0;
                const double three =
                    peers && length >= 3 ? milliseconds([&] { trigram.ask(question.toStdString()); }) : 0;
                if (round == 0)
                    continue;
                ours.push_back(one);
                if (peers)
                    scan.push_back(two);
                if (peers && length >= 3)
                    theirs.push_back(three);
            }
            mismatches += terms.words().size() == 1 && length <= 3 && found != expected;
            const auto worst = std::ranges::max_element(ours);
            std::fprintf(stderr, "%d %s: %lld found, %.2f ms at worst, LIKE %.1f ms, trigram %.1f ms\n", length,
                         question.toUtf8().constData(), static_cast<long long>(found), *worst,
                         *std::ranges::min_element(scan), theirs.empty() ? 0.0 : *std::ranges::min_element(theirs));
            std::ranges::copy(ours, std::back_inserter(oursAll));
            std::ranges::copy(scan, std::back_inserter(likeAll));
            std::ranges::copy(theirs, std::back_inserter(trigramAll));
        }
        const auto median = [](std::vector<double> &all_) {
            std::ranges::sort(all_);
            return all_.empty() ? 0.0 : all_[all_.size() / 2];
        };
        std::printf("length=%d max_ms=%.2f median_ms=%.3f like_ms=%.2f trigram_ms=%.3f mismatches=%lld\n", length,
                    *std::ranges::max_element(oursAll), median(oursAll), median(likeAll), median(trigramAll),
                    static_cast<long long>(mismatches));
    }
}

} // namespace lmp::bench

int main(int argc, char **argv) {
    if (argc != 2)
        return 2;
    lmp::bench::run(QString::fromLocal8Bit(argv[1]));
}
