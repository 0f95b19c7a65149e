#include "app/DeepLink.h"

#include <gtest/gtest.h>

#include <set>

namespace lmp {

using namespace Qt::StringLiterals;
using Tab = AppRouter::Tab;

namespace {

const QStringList everyKind{u"mission"_s,  u"approval"_s, u"receipt"_s,  u"memory"_s, u"proposal"_s,
                            u"artifact"_s, u"listing"_s,  u"creation"_s, u"grant"_s,  u"user"_s};

} // namespace

TEST(AppRouterTest, EveryRequestIsSeenAndConsumedOnce) {
    AppRouter router;
    int changes = 0;
    std::set<QString> ids;
    QObject::connect(&router, &AppRouter::pendingChanged, [&] {
        ++changes;
        ids.insert(router.pendingRequestID());
    });
    EXPECT_FALSE(router.consume());
    EXPECT_EQ(changes, 0);

    router.navigate(AppRouter::Mission{u"m"_s}, Tab::market);
    EXPECT_EQ(router.selectedTab(), Tab::market);
    EXPECT_EQ(router.pendingHostTab(), Tab::market);
    router.navigate(AppRouter::Mission{u"m"_s}, Tab::market);
    EXPECT_EQ(ids.size(), 2u) << "the same place again is a new request";
    // The person looks elsewhere in between, and the request waits.
    router.setSelectedTab(Tab::me);
    EXPECT_EQ(router.consume(), AppRouter::Destination(AppRouter::Mission{u"m"_s}));
    EXPECT_FALSE(router.consume());
    EXPECT_FALSE(router.pendingHostTab());
    EXPECT_EQ(changes, 3);

    router.navigate(AppRouter::Crisis());
    EXPECT_EQ(router.selectedTab(), Tab::me) << "no tab of its own";
    router.navigate(AppRouter::Approval{u"m"_s, u"s"_s}, Tab::now);
    EXPECT_EQ(router.consume(), AppRouter::Destination(AppRouter::Approval{u"m"_s, u"s"_s})) << "the newest counts";
    EXPECT_EQ(ids.size(), 4u);
}

TEST(ObjectReferenceTest, OnlyWhatCanBeShownIsRouted) {
    struct Case {
        QString text;
        std::optional<AppRouter::Destination> destination; ///< none: no reference at all
        std::optional<Tab> tab;
    };
    const QString longest(128, u'a');
    const auto object = [](const QString &kind) {
        return AppRouter::Object{{kind, u"x"_s}};
    };
    for (const Case &c : std::initializer_list<Case>{
             {u"mission:m_1"_s, AppRouter::Mission{u"m_1"_s}, Tab::now},
             {u"approval:m_1/s-2"_s, AppRouter::Approval{u"m_1"_s, u"s-2"_s}, Tab::now},
             {u"receipt:r"_s, AppRouter::Receipt{u"r"_s}, Tab::me},
             {u"memory:"_s + longest, AppRouter::Memory{longest}, Tab::me},
             {u"artifact:a"_s, AppRouter::Artifact{u"a"_s}, Tab::studio},
             {u"proposal:x"_s, object(u"proposal"_s), Tab::now},
             {u"listing:x"_s, object(u"listing"_s), Tab::market},
             {u"creation:x"_s, object(u"creation"_s), Tab::studio},
             {u"grant:x"_s, object(u"grant"_s), Tab::me},
             {u"user:x"_s, object(u"user"_s), Tab::social},
             {u"planet:x"_s, AppRouter::Unavailable(), {}},
             {u"memory:a"_s + longest, {}, {}},
             {u"Mission:x"_s, {}, {}},
             {u"approval:m"_s, {}, {}},
             {u"approval:m/"_s, {}, {}},
             {u"approval:m/s/t"_s, {}, {}},
             {u"mission:m/s"_s, {}, {}},
             {u"mission:"_s, {}, {}},
             {u":x"_s, {}, {}},
             {u"mission"_s, {}, {}},
             {u""_s, {}, {}},
             {u"user:.."_s, {}, {}},
             {u"user:a b"_s, {}, {}},
             {u"user:a%2Fb"_s, {}, {}},
             {u"user:a?b"_s, {}, {}},
             {u"user:\u202Eb"_s, {}, {}},
         }) {
        SCOPED_TRACE(c.text.toStdString());
        const auto reference = ObjectReference::parse(c.text);
        ASSERT_EQ(reference.has_value(), c.destination.has_value());
        if (!reference)
            continue;
        EXPECT_EQ(reference->canonical(), c.text);
        EXPECT_EQ(AppRouter::routeTo(*reference, everyKind), (AppRouter::Route{c.destination, c.tab}));
        EXPECT_EQ(AppRouter::routeTo(*reference, {}), AppRouter::Route::unavailable());
    }
}

TEST(DeepLinkTest, NamesAPlaceOrNothing) {
    const QStringList shown{u"mission"_s, u"approval"_s};
    for (const auto &[link, route] : std::initializer_list<std::pair<QString, AppRouter::Route>>{
             {u"lumenpair://now"_s, {.tab = Tab::now}},
             {u"LUMENPAIR://Studio/"_s, {.tab = Tab::studio}},
             {u"lumenpair://crisis"_s, {.destination = AppRouter::Crisis()}},
             {u"lumenpair://conversation/c-1"_s, {AppRouter::Conversation{u"c-1"_s}, Tab::now}},
             {u"lumenpair://object/mission/m%3A1"_s, {AppRouter::Mission{u"m:1"_s}, Tab::now}},
             {u"lumenpair://object/approval/m/s"_s, {AppRouter::Approval{u"m"_s, u"s"_s}, Tab::now}},
         })
        EXPECT_EQ(DeepLink::route(link, shown), route) << link.toStdString();

    for (const QString &link : {
             u""_s,
             u"lumenpair:"_s,
             u"lumenpair://"_s,
             u"lumenpair:///now"_s,
             u"lumenpair:now"_s,
             u"https://now"_s,
             u"lumenpair://now/more"_s,
             u"lumenpair://now//"_s,
             u"lumenpair://tab"_s,
             u"lumenpair://0"_s,
             u"lumenpair://crisis/x"_s,
             u"lumenpair://now?x=1"_s,
             u"lumenpair://now#x"_s,
             u"lumenpair://me@now"_s,
             u"lumenpair://now:80"_s,
             u"lumenpair://conversation/"_s,
             u"lumenpair://conversation/a/b"_s,
             u"lumenpair://conversation/.."_s,
             u"lumenpair://conversation/%2e%2e"_s,
             u"lumenpair://conversation/a%2Fb"_s,
             u"lumenpair://conversation/a%252Fb"_s,
             u"lumenpair://conversation/%00"_s,
             u"lumenpair://conversation/%FF%FE"_s,
             u"lumenpair://conversation/%zz"_s,
             u"lumenpair://conversation/%E4%BD%A0"_s,
             u"lumenpair://conversation/a b"_s,
             u"lumenpair://conversation/a\nb"_s,
             u"lumenpair://conversation/"_s + QString(3000, u'a'),
             u"lumenpair://object/mission"_s,
             u"lumenpair://object/mission/m/s"_s,
             u"lumenpair://object/mission/m//"_s,
             u"lumenpair://object/approval/m"_s,
             u"lumenpair://object/approval/m/s/t"_s,
             u"lumenpair://object/memory/m"_s, // of a kind without a screen
             u"lumenpair://run/rm"_s,
         })
        EXPECT_EQ(DeepLink::route(link, shown), AppRouter::Route::unavailable()) << link.toStdString();
}

TEST(DeepLinkTest, WarmAndColdTakeTheSameWay) {
    EXPECT_EQ(DeepLink::in({u"--profile"_s, u"x"_s, u"Lumenpair://me"_s, u"lumenpair://now"_s}), u"Lumenpair://me"_s);
    EXPECT_EQ(DeepLink::in({u"lumenpair:now"_s, u"lumenpair://me"_s}), u"lumenpair:now"_s) << "to be told of it";
    EXPECT_FALSE(DeepLink::in({u"--profile"_s, u"lumenpair"_s}));
    AppRouter router;
    router.navigate(AppRouter::Crisis());
    DeepLink::open(router, u"lumenpair://market"_s);
    EXPECT_EQ(router.selectedTab(), Tab::market);
    EXPECT_EQ(router.consume(), AppRouter::Destination(AppRouter::Crisis())) << "a tab alone asks for nothing more";
    DeepLink::open(router, u"lumenpair://object/mission/m"_s);
    EXPECT_EQ(router.consume(), AppRouter::Destination(AppRouter::Unavailable()));
    router.setShownKinds(everyKind);
    DeepLink::open(router, u"lumenpair://object/user/x"_s);
    EXPECT_EQ(router.selectedTab(), Tab::social);
}

} // namespace lmp
