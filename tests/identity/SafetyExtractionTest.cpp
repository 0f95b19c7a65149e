#include "identity/SafetyExtraction.h"
#include "identity/SafetyGateStore.h"

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

TEST(SafetyExtractionTest, WhatIsNoCrisisYieldsNoSignal) {
    for (const char *answer : {R"({})", R"([])", R"(7)", R"({"safety":null})", R"({"safety":[true]})",
                               R"({"safety":{}})", R"({"safety":{"crisis":false,"guidance":"g"}})",
                               R"({"safety":{"crisis":"true"}})", R"({"safety":{"crisis":1}})", R"({"crisis":true})"})
        EXPECT_FALSE(SafetyExtraction::crisis(boost::json::parse(answer))) << answer;
}

TEST(SafetyExtractionTest, AWrongFieldCostsThatFieldAlone) {
    const auto whole = SafetyExtraction::crisis(boost::json::parse(R"({"text":"t","safety":{"crisis":true,
        "guidance":"先停一下","resources":[{"label":"热线","phone":"120","more":1}],"region":"CN","layer":"L2",
        "assumedRegion":true,"resourcesVerified":true}})"));
    EXPECT_EQ(whole, (CrisisSignal{u"先停一下"_s, {{u"热线"_s, u"120"_s}}, u"CN"_s, u"L2"_s, true, true}));

    const auto spoilt = SafetyExtraction::crisis(boost::json::parse(R"({"safety":{"crisis":true,"guidance":7,
        "resources":[{"phone":"1"},{"label":"a","phone":2},"x",null,{"label":"b","phone":"3"}],
        "region":null,"layer":[],"assumedRegion":"yes","resourcesVerified":1}})"));
    EXPECT_EQ(spoilt, (CrisisSignal{{}, {{u"b"_s, u"3"_s}}, {}, {}, false, false}));

    // Whether a number may be dialled is decided on what came; the rest is only ever read.
    const auto turned = SafetyExtraction::crisis(boost::json::parse(
        R"({"safety":{"crisis":true,"region":"C\u202eN","resources":[{"label":"a\nb","phone":"1\u202e2\n0"}]}})"));
    EXPECT_EQ(turned, (CrisisSignal{{}, {{u"a b"_s, u"1\u202e2\n0"_s}}, u"CN"_s, {}, false, false}));

    EXPECT_EQ(SafetyExtraction::crisis(boost::json::parse(R"({"safety":{"crisis":true,"resources":{"a":1}}})")),
              CrisisSignal{});
}

TEST(SafetyExtractionTest, NumbersAreGivenOnlyWhenVerified) {
    const QList<CrisisResource> some{{u"a"_s, u"1"_s}};
    for (const auto &[resources, verified, given] :
         std::initializer_list<std::tuple<QList<CrisisResource>, bool, bool>>{
             {some, true, true}, {some, false, false}, {{}, true, false}, {{}, false, false}}) {
        CrisisSignal signal;
        signal.resources = resources;
        signal.resourcesVerified = verified;
        EXPECT_EQ(signal.hasVerifiedNumbers(), given);
    }
}

TEST(SafetyExtractionTest, ContinuousUse) {
    const auto notice = [](const char *answer) {
        return SafetyExtraction::continuousUse(boost::json::parse(answer));
    };
    EXPECT_EQ(notice(R"({"continuousUse":{"minutes":90,"message":"歇会儿","x":1}})"),
              (ContinuousUseNotice{90, u"歇会儿"_s}));
    for (const char *answer :
         {R"({})", R"({"continuousUse":90})", R"({"continuousUse":{"minutes":"90","message":"m"}})",
          R"({"continuousUse":{"minutes":1.5,"message":"m"}})", R"({"continuousUse":{"minutes":90}})",
          R"({"continuousUse":{"message":"m"}})", R"({"continuousUse":{"minutes":90,"message":null}})"})
        EXPECT_FALSE(notice(answer)) << answer;
}

TEST(SafetyGateStoreTest, KeepsTheLatestOfEachUntilItIsClosed) {
    SafetyGateStore store;
    int crisis = 0, continuous = 0;
    QObject::connect(&store, &SafetyGateStore::crisisChanged, [&] { ++crisis; });
    QObject::connect(&store, &SafetyGateStore::continuousUseChanged, [&] { ++continuous; });
    CrisisSignal first, second;
    first.guidance = u"1"_s;
    second.guidance = u"2"_s;
    store.show(first);
    store.show(ContinuousUseNotice{1, u"m"_s});
    store.show(second);
    EXPECT_EQ(store.crisis(), second);
    store.closeCrisis();
    store.closeCrisis();
    EXPECT_FALSE(store.crisis());
    EXPECT_TRUE(store.continuousUse()) << "closing one card leaves the other";
    store.closeContinuousUse();
    EXPECT_FALSE(store.continuousUse());
    EXPECT_EQ(crisis, 3);
    EXPECT_EQ(continuous, 2);
}

} // namespace lmp
