#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <boost/describe.hpp>

#include <optional>
#include <vector>

namespace lmp::bench {

struct SampleAttachment {
    QString kind;
    QString url;
    std::optional<qint64> size;
    bool operator==(const SampleAttachment &) const = default;
};
BOOST_DESCRIBE_STRUCT(SampleAttachment, (), (kind, url, size))

struct SampleMessage {
    QString id;
    QString role;
    QString content;
    qint64 createdAt = 0;
    bool edited = false;
    std::optional<QString> replyTo;
    std::optional<double> score;
    std::optional<QList<QString>> tags;
    std::optional<SampleAttachment> attachment;
    bool operator==(const SampleMessage &) const = default;
};
BOOST_DESCRIBE_STRUCT(SampleMessage, (), (id, role, content, createdAt, edited, replyTo, score, tags, attachment))

/// A conversation with every kind of field, most of its text Chinese.
struct SampleConversation {
    QString id;
    QString title;
    std::vector<SampleMessage> messages;
    bool operator==(const SampleConversation &) const = default;

    /// The same conversation each time.
    static SampleConversation ofMessages(int count);
};
BOOST_DESCRIBE_STRUCT(SampleConversation, (), (id, title, messages))

} // namespace lmp::bench
