#include "identity/CrisisResourcesService.h"
#include "identity/CrisisRegion.h"
#include "identity/CrisisTexts.h"

#include "support/Await.h"
#include "support/StubServer.h"

#include <gtest/gtest.h>

#include <QSet>

namespace lmp {

using namespace Qt::StringLiterals;

class CrisisResourcesServiceTest : public ::testing::Test {
protected:
    CrisisResourcesServiceTest() {
        DecodeFailureSink::install([this](const QString &endpoint, const QString &, int) {
            // What an earlier test made arrives late.
            reports += endpoint.contains(u"crisis"_s);
        });
    }
    ~CrisisResourcesServiceTest() override { DecodeFailureSink::install({}); }
    Result<CrisisResourcesService::Resp> load(const QString &region) {
        const CrisisResourcesService service(APIClient(server.url(u"/api"_s), [] { return u"secret"_s; }));
        return await(service.load(region));
    }

    StubServer server;
    int reports = 0;
};

TEST_F(CrisisResourcesServiceTest, LeavesNoTrace) {
    server.on("/api/app/crisis-resources", StubServer::reply(200, R"({"region":"CN","items":[{"name":"n","phone":"1"}],
        "guidance":"g","verified":true,"assumedRegion":true})"));
    const auto resp = load(u"CN"_s);
    ASSERT_TRUE(resp);
    EXPECT_EQ(*resp, (CrisisResourcesService::Resp{u"CN"_s, {{u"n"_s, u"1"_s, {}}}, u"g"_s, true, true}));
    EXPECT_TRUE(resp->hasVerifiedNumbers());
    EXPECT_EQ(server.requests[0].path, "/api/app/crisis-resources?region=CN");
    EXPECT_FALSE(server.requests[0].headers.contains("authorization"));
    EXPECT_FALSE(server.requests[0].headers.contains("x-access-token"));

    // An answer that does not decode is told to the person and to nobody else.
    server.on("/api/app/crisis-resources", StubServer::reply(200, R"({"region":"CN"})"));
    EXPECT_EQ(load(u"CN"_s).error().reason, u"数据格式对不上：Resp 要求字段「items」，服务端没给（位置 (根)）"_s);
    settle();
    EXPECT_EQ(reports, 0);
}

TEST_F(CrisisResourcesServiceTest, AnyRegionStaysOneParameter) {
    server.on("/api/app/crisis-resources", StubServer::reply(503, R"({"reason":"稍后"})"));
    EXPECT_EQ(load(u"a&b=中 #"_s).error().reason, u"稍后"_s);
    EXPECT_EQ(server.requests[0].path, "/api/app/crisis-resources?region=a%26b%3D%E4%B8%AD%20%23");
}

TEST(CrisisTextsTest, ANumberStaysThatNumber) {
    EXPECT_EQ(CrisisTexts::dialLink(u"120"_s), u"tel://120"_s);
    for (const auto &[phone, url] : std::initializer_list<std::pair<QString, QByteArray>>{
             {u"120"_s, "tel:120"},
             {u"400-161-9995"_s, "tel:400-161-9995"},
             {u"+852 2389 2222"_s, "tel:+85223892222"},
             {u"*120#"_s, "tel:*120%23"},
             {u"热线"_s, ""},
             {u""_s, ""},
         })
        EXPECT_EQ(CrisisTexts::dialURL(phone).toEncoded(), url) << phone.toStdString();
}

TEST(CrisisRegionTest, EveryCodeIsThereOnce) {
    QSet<QString> codes;
    for (const CrisisRegion &region : CrisisRegion::all())
        codes.insert(region.code);
    EXPECT_EQ(codes.size(), CrisisRegion::all().size());
    EXPECT_EQ(CrisisRegion::fallback().label, u"中国大陆"_s);
    EXPECT_EQ(CrisisRegion::labelOf(u"hk"_s), u"中国香港"_s);
    EXPECT_EQ(CrisisRegion::labelOf(u"XX"_s), u"XX"_s);
}

} // namespace lmp
