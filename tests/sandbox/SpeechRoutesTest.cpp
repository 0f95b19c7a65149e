#include "sandbox/SandboxFixture.h"

#include "SpeechSynthesizer.h"

#include <fstream>

namespace lmp::sandbox {

class SpeechRoutesTest : public SandboxFixture {
protected:
    /// A program in place of the one that speaks.
    std::string script(const std::string &name, const std::string &body) {
        const auto path =
            std::filesystem::temp_directory_path() / (name + std::to_string(::getpid()) + std::to_string(std::rand()));
        std::ofstream(path) << "#!/bin/sh\n" << body;
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        m_scripts.push_back(path);
        return path;
    }
    ~SpeechRoutesTest() override {
        for (const auto &path : m_scripts)
            std::filesystem::remove(path);
    }

    std::vector<std::filesystem::path> m_scripts;
};

TEST_F(SpeechRoutesTest, WhatIsAskedAndAnswered) {
    options.speechProgram = "/nowhere/espeak-ng";
    start();
    const auto token = signIn();
    const auto speak = [&](const std::string &text) {
        return post("/api/tts", {{"text", text}}, token);
    };
    EXPECT_EQ(post("/api/tts", {{"text", "你好"}}).status, 401);
    const auto missing = speak("你好。");
    EXPECT_EQ(missing.status, 503);
    EXPECT_EQ(missing["error"], "tts_unavailable");
    EXPECT_EQ(speak("").status, 400);
    std::string longest;
    for (int i = 0; i < 500; ++i)
        longest += "字";
    EXPECT_EQ(speak(longest).status, 503);
    EXPECT_EQ(speak(longest + "。").status, 400);
}

TEST_F(SpeechRoutesTest, AProgramThatDoesNotDoWell) {
    using Failure = SpeechSynthesizer::Failure;
    const auto outcome = [&](const std::string &body, int milliseconds = 10'000) {
        return SpeechSynthesizer(script("speaks", body), std::chrono::milliseconds(milliseconds)).speak("你好");
    };
    EXPECT_EQ(outcome("exit 1").failure, Failure::failed);
    EXPECT_EQ(outcome("echo no sound").failure, Failure::failed);
    EXPECT_EQ(outcome("exec sleep 600", 50).failure, Failure::failed) << "it is not waited for";
    const std::string header =
        "printf 'RIFF\\377\\377\\377\\177WAVEfmt ....................data\\377\\377\\377\\177'; ";
    EXPECT_EQ(outcome(header + "cat; exit 3").failure, Failure::failed) << "cut off";
    const auto whole = outcome(header + "cat");
    ASSERT_FALSE(whole.failure);
    EXPECT_EQ(whole.wav.size(), 44 + 7);
    EXPECT_EQ(whole.wav.substr(44), "你好\n") << "the text comes on the standard input";
    EXPECT_EQ(whole.wav[40], 7) << "and the header tells how long it is";
    EXPECT_EQ(whole.wav[4], 44 + 7 - 8);
}

TEST_F(SpeechRoutesTest, SpeaksMandarin) {
    if (SpeechSynthesizer().speak("好").failure == SpeechSynthesizer::Failure::notInstalled)
        GTEST_SKIP() << "espeak-ng is not installed";
    start();
    const auto token = signIn();
    const auto spoken = post("/api/tts", {{"text", "你好，\"$(ls)\"; -v en"}}, token);
    ASSERT_EQ(spoken.status, 200);
    EXPECT_EQ(spoken["encoding"], "wav");
    EXPECT_EQ(spoken["voice"], "cmn");
    EXPECT_EQ(spoken["audio"].substr(0, 4), "UklG");
    EXPECT_GT(spoken["audio"].size(), 20'000u);
    EXPECT_GT(post("/api/tts", {{"text", "你好，你好，你好，你好，你好。"}}, token)["audio"].size(), 40'000u);
    EXPECT_EQ(post("/api/tts", {{"text", "\n"}}, token).status, 200) << "nothing to say is said in silence";
}

} // namespace lmp::sandbox
