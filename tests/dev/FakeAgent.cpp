#include "dev/FakeAgent.h"

#include <QFile>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

void write(const QString &path, const QByteArray &text) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
}

} // namespace

FakeAgent::FakeAgent(const QByteArray &recording) {
    write(m_folder.filePath(u"recording"_s), recording);
    write(program(), "#!/bin/sh\ncd \"$(dirname \"$0\")\"\nexec python3 '" LMP_TEST_SOURCES
                     "/dev/replay_agent.py' recording log \"$@\"\n");
    QFile::setPermissions(program(), QFile::ReadOwner | QFile::ExeOwner);
}

QByteArray FakeAgent::recording(const QString &name) {
    QFile file(QStringLiteral(LMP_TEST_DATA "/") + name + u".jsonl"_s);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

QStringList FakeAgent::received() const {
    QFile file(m_folder.filePath(u"log"_s));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                                          : QStringList();
}

} // namespace lmp
