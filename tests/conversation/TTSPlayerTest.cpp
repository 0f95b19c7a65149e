#include "conversation/TTSPlayer.h"
#include "conversation/SpeechAudio.h"
#include "conversation/TTSTextChunker.h"

#include "support/Await.h"
#include "support/FakeAudio.h"
#include "support/StubServer.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using End = AudioOutput::End;

TEST(SpeechAudioTest, WhatIsAudio) {
    struct Case {
        QByteArray bytes;
        std::optional<QString> encoding;
        std::optional<QString> format;
    };
    for (const auto &[bytes, encoding, format] : std::initializer_list<Case>{
             {"RIFF1234WAVEfmt ", u"wav"_s, u"wav"_s},
             {"x", u" Audio/MPEG; rate=24000"_s, u"mp3"_s},
             {"x", u"opus"_s, u"ogg"_s},
             {"x", u"midi"_s, {}},
             {"RIFF1234WAVEfmt ", {}, u"wav"_s},
             {"RIFF", {}, {}},
             {"ID3", u""_s, u"mp3"_s},
             {"\xff\xfb\x90", {}, u"mp3"_s},
             {"\xff\xf1\x50", {}, u"aac"_s},
             {"1234ftypM4A ", {}, u"m4a"_s},
             {"<html>", {}, {}},
             {"", u"wav"_s, {}},
         }) {
        const auto audio = SpeechAudio::of(QString::fromLatin1(bytes.toBase64()), encoding);
        EXPECT_EQ(audio ? std::optional(audio->format) : std::nullopt, format) << bytes.toStdString();
        if (audio)
            EXPECT_EQ(audio->bytes, bytes);
    }
    EXPECT_FALSE(SpeechAudio::of(u"不是"_s, u"wav"_s));
    EXPECT_FALSE(SpeechAudio::of(u"a$b="_s, u"wav"_s));
}

class TTSPlayerTest : public ::testing::Test {
protected:
    TTSPlayerTest() {
        player.onFinished = [this] {
            ++finishes;
        };
        serve([](const QString &text) { return spoken(text.toUtf8()); });
    }
    static QByteArray spoken(const QByteArray &audio, const QByteArray &encoding = "wav") {
        return R"({"audio":")" + audio.toBase64() + R"(","encoding":")" + encoding + "\"}";
    }
    void serve(const std::function<QByteArray(const QString &)> &answer) {
        server.on("/api/tts", [this, answer](const StubServer::Request &request, QTcpSocket &socket) {
            const QString text = Json::decode<TTSPlayer::TtsBody>(request.body)->text;
            asked << text;
            socket.write(StubServer::message(200, answer(text)));
        });
    }
    bool plays(qsizetype count) {
        return eventually([&] { return audio.played.size() == count && player.isPlayingAudio(); });
    }

    StubServer server;
    FakeAudio audio;
    QStringList asked;
    int finishes = 0;
    TTSPlayer player{APIClient(server.url(u"/api"_s), [] { return u"tok"_s; }), [this] {
                         return audio.make();
                     }};
};

TEST_F(TTSPlayerTest, OnePieceAfterTheOther) {
    player.speak(u"你好。走吧！嗯"_s);
    EXPECT_TRUE(player.playing());
    EXPECT_FALSE(player.isPlayingAudio());
    EXPECT_EQ(player.queue(), (QStringList{u"走吧！"_s, u"嗯"_s}));
    auto end = player.finished();
    const QStringList pieces{u"你好。"_s, u"走吧！"_s, u"嗯"_s};
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        ASSERT_TRUE(plays(i + 1));
        EXPECT_EQ(player.speakingText(), pieces[i]);
        EXPECT_EQ(asked, pieces.first(i + 1)) << "nothing is asked for before its turn";
        EXPECT_EQ(audio.played.last().audio, pieces[i].toUtf8());
        EXPECT_EQ(audio.played.last().format, u"wav"_s);
        audio.end(End::finished);
    }
    await(std::move(end));
    EXPECT_EQ(asked.size(), 3);
    EXPECT_EQ(finishes, 1);
    EXPECT_FALSE(player.speakingText() || player.playbackError() || player.textError());
    await(player.finished());
}

TEST_F(TTSPlayerTest, WhatGoesWrongIsANoteBesideTheText) {
    const auto unavailable = u"语音暂时不可用，请继续查看字幕。"_s;
    const auto notPlayed = u"语音未能播放，请继续查看字幕。"_s;
    struct Case {
        StubServer::Handler answer;
        QString note;
    };
    for (const auto &[answer, note] : std::initializer_list<Case>{
             {StubServer::reply(503, "{}"), unavailable},
             {StubServer::reply(200, "<html>"), unavailable},
             {[](const auto &, QTcpSocket &socket) { socket.abort(); }, unavailable},
             {StubServer::reply(200, R"({"audio":"!!"})"), notPlayed},
             {StubServer::reply(200, spoken("x", "midi")), notPlayed},
             {StubServer::reply(200, R"({"audio":""})"), notPlayed},
         }) {
        server.on("/api/tts", answer);
        player.speak(u"你好。走吧！"_s);
        ASSERT_TRUE(eventually([&] { return !player.playing(); }));
        EXPECT_EQ(player.playbackError(), note);
        EXPECT_EQ(player.speakingText(), u"你好。"_s) << "the text stays";
        EXPECT_FALSE(player.interrupted());
        EXPECT_TRUE(player.queue().isEmpty());
    }
    EXPECT_TRUE(audio.played.isEmpty());
    EXPECT_EQ(finishes, 6);
    player.stop();
    EXPECT_FALSE(player.playbackError() || player.speakingText()) << "put away";
    player.speak(u'e' + QString(500, QChar(0x301)));
    EXPECT_EQ(player.textError(), TTSTextChunker::describe(TTSTextChunker::ChunkError::oversizedGrapheme));
    EXPECT_FALSE(player.playing());
    player.speak(QString());
    EXPECT_FALSE(player.playing() || player.textError());
}

TEST_F(TTSPlayerTest, WhatEndsASound) {
    player.speak(u"你好。走吧！"_s);
    ASSERT_TRUE(plays(1));
    audio.end(End::unplayable);
    ASSERT_TRUE(eventually([&] { return !player.playing(); }));
    EXPECT_EQ(player.playbackError(), TTSPlayer::notPlayed());
    player.speak(u"你好。走吧！"_s);
    ASSERT_TRUE(plays(2));
    audio.end(End::interrupted);
    ASSERT_TRUE(eventually([&] { return !player.playing(); }));
    EXPECT_EQ(player.playbackError(), u"语音播放已中断，请继续查看字幕。"_s);
    EXPECT_TRUE(player.interrupted());
    EXPECT_EQ(player.speakingText(), u"你好。"_s);
    player.speak(u"再来。"_s);
    EXPECT_FALSE(player.interrupted() || player.playbackError());
    ASSERT_TRUE(plays(3));
    player.interrupt();
    EXPECT_TRUE(player.interrupted());
    player.interrupt();
    EXPECT_EQ(finishes, 3);
}

TEST_F(TTSPlayerTest, WhatIsLateIsDropped) {
    QList<QPointer<QTcpSocket>> held;
    server.on("/api/tts", [&](const auto &, QTcpSocket &socket) { held << &socket; });
    player.speak(u"旧的。"_s);
    ASSERT_TRUE(eventually([&] { return held.size() == 1; }));
    player.speak(u"新的。"_s);
    ASSERT_TRUE(eventually([&] { return held.size() == 2; }));
    if (held[0])
        held[0]->write(StubServer::message(200, spoken("old")));
    held[1]->write(StubServer::message(200, spoken("new")));
    ASSERT_TRUE(plays(1));
    EXPECT_EQ(audio.played.last().audio, "new");
    // The sound ends at the very moment in which another text is begun.
    audio.end(End::interrupted);
    player.speak(u"更新的。"_s);
    ASSERT_TRUE(eventually([&] { return held.size() == 3; }));
    settle();
    EXPECT_TRUE(player.playing());
    EXPECT_FALSE(player.interrupted());
    player.stop();
    EXPECT_FALSE(player.playing() || player.speakingText() || player.playbackError()) << "as the person wished";
    if (held[2])
        held[2]->write(StubServer::message(200, spoken("late")));
    settle();
    EXPECT_EQ(audio.played.size(), 1);
    EXPECT_EQ(finishes, 1) << "a text that another replaces does not end";
}

TEST_F(TTSPlayerTest, SilencesAreNotSpoken) {
    player.speak(u" \n \n一。\n\t\n二"_s);
    for (const auto count : {1, 2}) {
        ASSERT_TRUE(eventually([&] { return audio.played.size() == count; }));
        audio.end(End::finished);
    }
    await(player.finished());
    EXPECT_EQ(asked, (QStringList{u"一。"_s, u"二"_s}));
    EXPECT_FALSE(player.playbackError());
    player.speak(u" \n "_s);
    EXPECT_FALSE(player.playing());
}

TEST_F(TTSPlayerTest, ACallOfWhichTheSoundIsInterruptsByItself) {
    player.externallyManagedSession = true;
    player.speak(u"一。二。"_s);
    ASSERT_TRUE(eventually([&] { return audio.played.size() == 1; }));
    audio.end(End::interrupted);
    ASSERT_TRUE(eventually([&] { return audio.played.size() == 2; }));
    EXPECT_FALSE(player.interrupted());
    player.interrupt();
    EXPECT_TRUE(player.interrupted());
    EXPECT_EQ(player.playbackError(), TTSPlayer::wasInterrupted());
}

} // namespace lmp
