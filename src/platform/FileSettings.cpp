#include "platform/FileSettings.h"

#include "platform/AtomicFile.h"
#include "platform/Log.h"

#include <QDataStream>
#include <QFile>
#include <QIODevice>
#include <QLockFile>

#include <cerrno>
#include <chrono>
#include <cstdio>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// First line of the file, so that a newer form can be told from a damaged one.
constexpr quint32 magic = 0x4c4d5031; // "LMP1"

} // namespace

FileSettings::FileSettings(QString path)
    : m_path(std::move(path)) {}

std::optional<QByteArray> FileSettings::value(const QString &key) const {
    if (!m_loaded) {
        m_values = load().value_or(Values());
        m_loaded = true;
    }
    const auto it = m_values.constFind(key);
    return it == m_values.constEnd() ? std::nullopt : std::optional(*it);
}

bool FileSettings::setValue(const QString &key, const QByteArray &value) {
    return change([&](Values &values) { values.insert(key, value); });
}

bool FileSettings::remove(const QString &key) {
    return change([&](Values &values) { values.remove(key); });
}

/// @return none when there are settings that the system does not let us read: they are not ours to replace
std::optional<FileSettings::Values> FileSettings::load() const {
    const auto bytes = AtomicFile::read(m_path);
    if (!bytes && bytes.error().code == ENOENT)
        return Values();
    if (!bytes) {
        qCWarning(logPlatform) << "settings cannot be read:" << bytes.error().reason;
        return std::nullopt;
    }
    QDataStream stream(*bytes);
    stream.setVersion(QDataStream::Qt_6_4);
    quint32 head = 0;
    Values values;
    stream >> head;
    if (head == magic)
        stream >> values;
    if (head == magic && stream.status() == QDataStream::Ok)
        return values;
    QString kept = m_path + u".unreadable"_s;
    for (int number = 2; QFile::exists(kept); ++number)
        kept = m_path + u".unreadable.%1"_s.arg(number);
    if (std::rename(QFile::encodeName(m_path).constData(), QFile::encodeName(kept).constData()) != 0) {
        qCWarning(logPlatform) << "settings could not be understood, and not be put aside either";
        return std::nullopt;
    }
    qCWarning(logPlatform) << "settings could not be understood and were put aside";
    return Values();
}

bool FileSettings::change(const std::function<void(Values &)> &edit) {
    // Another process of this profile may have written since: its keys are read again, under a lock, and kept.
    QLockFile lock(m_path + u".lock"_s);
    if (!lock.tryLock(std::chrono::milliseconds(500).count()))
        qCWarning(logPlatform) << "settings are locked by another process; writing all the same";
    auto read = load();
    if (!read)
        return false;
    Values values = *std::move(read);
    edit(values);
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    stream << magic << values;
    const auto written = AtomicFile::write(m_path, bytes, AtomicFile::Durability::Relaxed);
    if (!written) {
        qCWarning(logPlatform) << "settings cannot be written:" << written.error().step << written.error().reason;
        return false;
    }
    m_values = std::move(values);
    m_loaded = true;
    return true;
}

} // namespace lmp
