#include "screens/kit/RecordListModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>
#include <random>

namespace lmp {

using namespace Qt::StringLiterals;

enum class Mood { calm, glad };
BOOST_DESCRIBE_ENUM(Mood, calm, glad)

struct Named {
    QString id;
    bool operator==(const Named &) const = default;
};
BOOST_DESCRIBE_STRUCT(Named, (), (id))

struct Thread : Named {
    qint64 count = 0;
    bool open = false;
    double share = 0;
    std::optional<QString> note;
    Mood mood = Mood::calm;
    std::vector<QString> tags;
    std::vector<Named> nested;
    bool operator==(const Thread &) const = default;
};
BOOST_DESCRIBE_STRUCT(Thread, (Named), (count, open, share, note, mood, tags, nested))

namespace {

using Model = RecordListModel<Thread, &Thread::id>;

Thread thread(const QString &id, qint64 count = 0) {
    Thread made;
    made.id = id;
    made.count = count;
    return made;
}

std::vector<Thread> threads(const QString &ids) {
    std::vector<Thread> made;
    for (const QChar id : ids)
        made.push_back(thread(id));
    return made;
}

/// What a view would show that heard of nothing but the model's signals.
class Mirror {
public:
    explicit Mirror(const Model &model)
        : m_model(model) {
        QObject::connect(&model, &Model::rowsInserted, [this](const QModelIndex &, int first, int last) {
            for (int row = first; row <= last; ++row)
                m_rows.insert(row, m_model.records()[std::size_t(row)]);
        });
        QObject::connect(&model, &Model::rowsRemoved,
                         [this](const QModelIndex &, int first, int last) { m_rows.remove(first, last - first + 1); });
        QObject::connect(&model, &Model::rowsMoved, [this](const auto &, int from, int, const auto &, int before) {
            m_rows.move(from, before > from ? before - 1 : before);
        });
        QObject::connect(&model, &Model::dataChanged, [this](const QModelIndex &at, const QModelIndex &, const auto &) {
            m_rows[at.row()] = m_model.records()[std::size_t(at.row())];
        });
    }

    [[nodiscard]] bool agrees() const { return std::ranges::equal(m_rows, m_model.records()); }

private:
    const Model &m_model;
    QList<Thread> m_rows;
};

TEST(RecordListModel, TellsOnlyOfWhatChanged) {
    struct Case {
        QString before;
        QString after;
        int changes;
    };
    for (const auto &[before, after, changes] : std::initializer_list<Case>{
             {u"abc"_s, u"abc"_s, 0},
             {u""_s, u"abc"_s, 1},
             {u"abc"_s, u""_s, 1},
             {u"abcde"_s, u"bcdea"_s, 1},
             {u"abcde"_s, u"eabcd"_s, 1},
             {u"abcd"_s, u"axbcyzd"_s, 2},
             {u"abcdef"_s, u"af"_s, 1},
             {u"abc"_s, u"xyz"_s, 2},
             {u"aab"_s, u"aba"_s, 1},
         }) {
        Model model;
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        model.setRecords(threads(before));
        const QSignalSpy reset(&model, &Model::modelReset);
        int heard = 0;
        for (const auto signal : {&Model::rowsInserted, &Model::rowsRemoved})
            QObject::connect(&model, signal, [&heard] { ++heard; });
        QObject::connect(&model, &Model::rowsMoved, [&heard] { ++heard; });
        model.setRecords(threads(after));
        EXPECT_EQ(model.records(), threads(after)) << qPrintable(before + u" -> "_s + after);
        EXPECT_EQ(heard, changes) << qPrintable(before + u" -> "_s + after);
        EXPECT_TRUE(reset.isEmpty());
    }
}

TEST(RecordListModel, AViewThatOnlyListensShowsTheSame) {
    std::mt19937 random(7);
    Model model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const Mirror mirror(model);
    for (int round = 0; round < 300; ++round) {
        QString ids = u"abcdefghijklmnopaa"_s;
        std::shuffle(ids.begin(), ids.end(), random);
        std::vector<Thread> records = threads(ids.first(qsizetype(random() % 19)));
        for (Thread &record : records)
            record.count = qint64(random() % 2);
        model.setRecords(records);
        ASSERT_EQ(model.records(), records);
        ASSERT_TRUE(mirror.agrees()) << "round " << round;
    }
}

TEST(RecordListModel, RolesAreTheFieldsThatCanBeShown) {
    Model model;
    Thread one = thread(u"a"_s, 1LL << 53);
    one.mood = Mood::glad;
    one.tags = {u"x"_s, u"y"_s};
    model.setRecords({one});
    QHash<QByteArray, QVariant> shown;
    const QHash<int, QByteArray> names = model.roleNames();
    for (auto role = names.begin(); role != names.end(); ++role)
        shown.insert(role.value(), model.data(model.index(0), role.key()));
    EXPECT_EQ(shown.size(), 7);
    EXPECT_EQ(shown.value("id"), u"a"_s);
    EXPECT_EQ(shown.value("count"), QVariant(1LL << 53));
    EXPECT_EQ(shown.value("open"), false);
    EXPECT_FALSE(shown.value("note").isValid());
    EXPECT_EQ(shown.value("mood"), u"glad"_s);
    EXPECT_EQ(shown.value("tags"), QVariant(QStringList{u"x"_s, u"y"_s}));

    QSignalSpy changed(&model, &Model::dataChanged);
    one.note = u"n"_s;
    one.nested = {Named{u"unseen"_s}};
    model.setRecords({one});
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed.at(0).at(2).value<QList<int>>(), QList<int>{names.key("note")});
}

} // namespace

} // namespace lmp
