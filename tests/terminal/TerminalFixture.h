#pragma once

#include "support/SandboxFixture.h"

#include <QDirIterator>

namespace lmp {

using namespace Qt::StringLiterals;

/// The program as people start it, against a sandbox, with a home of its own and no keychain.
class TerminalFixture : public SandboxFixture {
protected:
    struct Run {
        int code = -1;
        QString out;
        QString err;
        QList<boost::json::value> events() const {
            QList<boost::json::value> all;
            for (const QString &line : out.split(u'\n', Qt::SkipEmptyParts))
                all << Json::decode<boost::json::value>(line.toUtf8()).value_or(boost::json::value());
            return all;
        }
        QStringList types() const {
            QStringList all;
            for (const auto &event : events())
                all << QString::fromStdString(std::string(event.at("type").as_string()));
            all.removeDuplicates();
            return all;
        }
    };

    void SetUp() override {
        SandboxFixture::SetUp();
        m_token = signIn(u"13900000001"_s);
    }

    QProcessEnvironment environment() const {
        auto env = QProcessEnvironment::systemEnvironment();
        for (const QString &name :
             {u"DBUS_SESSION_BUS_ADDRESS"_s, u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"LMP_SITE"_s, u"LMP_TOKEN"_s})
            env.remove(name);
        env.insert(u"HOME"_s, m_home.path());
        env.insert(u"XDG_DATA_HOME"_s, m_home.filePath(u"data"_s));
        env.insert(u"XDG_RUNTIME_DIR"_s, m_home.path());
        env.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        env.insert(u"TERM"_s, u"xterm"_s);
        return env;
    }
    void start(QProcess &program, const QStringList &arguments, const QString &token) const {
        auto env = environment();
        if (!token.isEmpty())
            env.insert(u"LMP_TOKEN"_s, token);
        program.setProcessEnvironment(env);
        program.start(QCoreApplication::applicationDirPath() + u"/lumenpair"_s,
                      QStringList{u"--site"_s, m_site.toString()} + arguments);
    }
    /// Says `words` to a service that falls silent once it has begun to reply.
    /// @return what the program has said until then
    QByteArray sayAndStall(QProcess &program, const QString &words) {
        fault(R"({"route":"/relay/chat/stream","times":1,"stallAfterEvents":1})");
        start(program, {u"chat"_s, u"--jsonl"_s, words}, m_token);
        program.closeWriteChannel();
        QByteArray out;
        EXPECT_TRUE(eventually([&] { return (out += program.readAllStandardOutput()).contains("\"delta\""); }, 60'000));
        return out;
    }
    Run finish(QProcess &program) {
        // With the event loop running, since a stub in this process may have to answer meanwhile.
        EXPECT_TRUE(eventually([&] { return program.state() == QProcess::NotRunning; }, 60'000));
        return {program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -2,
                QString::fromUtf8(program.readAllStandardOutput()), QString::fromUtf8(program.readAllStandardError())};
    }
    Run run(const QStringList &arguments, const QByteArray &input = {}, std::optional<QString> token = {}) {
        QProcess program;
        start(program, arguments, token.value_or(m_token));
        program.write(input);
        program.closeWriteChannel();
        return finish(program);
    }
    /// Text of the last user message's state as the service holds it, in the newest conversation.
    std::string lastState() {
        const auto all = look(u"/api/app/conversations"_s, m_token);
        const auto id = all.at("conversations").at(0).at("id").as_string();
        const auto one = look(u"/api/app/conversation?id="_s + QString::fromStdString(std::string(id)), m_token);
        std::string state;
        for (const auto &message : one.at("conversation").at("messages").as_array()) {
            if (message.at("role") == "user")
                state = message.at("deliveryState").as_string();
        }
        return state;
    }
    /// Whether any file of the program's home holds `bytes`; one that is being written does not count.
    bool isOnDisk(const QByteArray &bytes) const {
        QDirIterator files(m_home.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.fileName().endsWith(u".tmp"_s) && file.open(QIODevice::ReadOnly) &&
                file.readAll().contains(bytes))
                return true;
        }
        return false;
    }
    void expectNothingInClear() const {
        EXPECT_FALSE(isOnDisk("sbx_"));
        EXPECT_FALSE(isOnDisk("long-Secret-77"));
    }
    std::size_t charges() { return look(u"/sandbox/charges"_s, m_token).at("charges").as_array().size(); }

    QTemporaryDir m_home;
    QString m_token;
};

} // namespace lmp
