#include "screens/markdown/ImageDownload.h"

#include "support/Await.h"
#include "support/StubServer.h"

#include <QBuffer>
#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

QByteArray png(const QSize &size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

/// What becomes of `url`: the size of the image, or the sentence.
QString outcome(const QUrl &url, const ImageDownload::Limits &limits) {
    ImageDownload download(limits);
    QStringList ends;
    QObject::connect(&download, &ImageDownload::done, &download,
                     [&](const QImage &image) { ends += u"%1x%2"_s.arg(image.width()).arg(image.height()); });
    QObject::connect(&download, &ImageDownload::failed, &download, [&](const QString &why) { ends += why; });
    download.start(url);
    EXPECT_TRUE(eventually([&] { return !ends.isEmpty(); }));
    settle();
    return ends.join(u'+');
}

} // namespace

TEST(ImageDownloadTest, EndsOnceWithAnImageOrASentence) {
    StubServer server;
    const QByteArray small = png({30, 20});
    server.on("/small", StubServer::reply(200, small));
    server.on("/wide", StubServer::reply(200, png({500, 10})));
    server.on("/many", StubServer::reply(200, png({1000, 1000})));
    server.on("/long", StubServer::reply(200, small + QByteArray(20'000, 'x')));
    server.on("/text", StubServer::reply(200, "text"));
    // Even where there is somebody to draw it.
    server.on("/drawing",
              StubServer::reply(200, "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>"));
    server.on("/none", StubServer::reply(404, small));
    server.on("/here", StubServer::reply(302, "", "Location: /small\r\n"));
    server.on("/file", StubServer::reply(302, "", "Location: https://example.org/x\r\n"));
    server.on("/cut", [](const StubServer::Request &, QTcpSocket &socket) { socket.abort(); });
    server.on("/stall", [](const StubServer::Request &, QTcpSocket &) {});
    const ImageDownload::Limits limits{
        .bytes = 10'000, .pixels = 100'000, .side = 100, .milliseconds = 200, .scheme = u"http"_s};

    EXPECT_EQ(outcome(server.url(u"/small"_s), limits), u"30x20"_s);
    EXPECT_EQ(outcome(server.url(u"/wide"_s), limits), u"100x2"_s);
    EXPECT_EQ(outcome(server.url(u"/here"_s), limits), u"30x20"_s);
    EXPECT_EQ(outcome(server.url(u"/many"_s), limits), u"这不是能显示的图片。"_s);
    EXPECT_EQ(outcome(server.url(u"/text"_s), limits), u"这不是能显示的图片。"_s);
    EXPECT_EQ(outcome(server.url(u"/drawing"_s), limits), u"这不是能显示的图片。"_s);
    EXPECT_EQ(outcome(server.url(u"/long"_s), limits), u"图片太大，没有加载。"_s);
    EXPECT_EQ(outcome(server.url(u"/file"_s), limits), u"图片的地址转到了不是 https 的地方，没有加载。"_s);
    for (const auto &path : {u"/none"_s, u"/cut"_s, u"/stall"_s})
        EXPECT_EQ(outcome(server.url(path), limits), u"图片没有加载成功。"_s) << path.toStdString();

    // Nobody else's addresses: the network is not even asked.
    server.requests.clear();
    EXPECT_EQ(outcome(server.url(u"/small"_s), ImageDownload::Limits()), u"只加载 https 的图片。"_s);
    EXPECT_TRUE(server.requests.empty());
}

} // namespace lmp
