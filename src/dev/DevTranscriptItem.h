#pragma once

#include "core/Json.h"
#include "dev/DevFileChangeKind.h"
#include "dev/DevTurnUsage.h"

#include <variant>

namespace lmp {

/// The cases of DevTranscriptItem. `at` is ISO 8601, UTC.
namespace dev_item {

struct User {
    QString id = {};
    QString text = {};
    QString at = {};
    bool operator==(const User &) const = default;
};
struct Assistant {
    QString id = {};
    QString text = {};
    QString at = {};
    bool operator==(const Assistant &) const = default;
};
struct Tool {
    QString id = {};
    QString name = {};
    QString summary = {};
    QString input = {};
    std::optional<QString> output = {}; ///< none while it runs
    bool isError = false;
    QString at = {};
    bool operator==(const Tool &) const = default;
};
struct File {
    QString id = {};
    QString path = {};
    DevFileChangeKind kind = DevFileChangeKind::modify;
    std::optional<qint64> added = {};
    std::optional<qint64> removed = {};
    QString at = {};
    bool operator==(const File &) const = default;
};
struct Permission {
    QString id = {};
    QString tool = {};
    QString summary = {};
    QString input = {};
    std::optional<QString> decision = {}; ///< none while it waits
    QString at = {};
    bool operator==(const Permission &) const = default;
};
struct Turn {
    QString id = {};
    DevTurnUsage usage = {};
    QString at = {};
    bool operator==(const Turn &) const = default;
};
struct Failure {
    QString id = {};
    QString reason = {};
    QString at = {};
    bool operator==(const Failure &) const = default;
};
struct Notice {
    QString id = {};
    QString text = {};
    QString at = {};
    bool operator==(const Notice &) const = default;
};

BOOST_DESCRIBE_STRUCT(User, (), (id, text, at))
BOOST_DESCRIBE_STRUCT(Assistant, (), (id, text, at))
BOOST_DESCRIBE_STRUCT(Tool, (), (id, name, summary, input, output, isError, at))
BOOST_DESCRIBE_STRUCT(File, (), (id, path, kind, added, removed, at))
BOOST_DESCRIBE_STRUCT(Permission, (), (id, tool, summary, input, decision, at))
BOOST_DESCRIBE_STRUCT(Turn, (), (id, usage, at))
BOOST_DESCRIBE_STRUCT(Failure, (), (id, reason, at))
BOOST_DESCRIBE_STRUCT(Notice, (), (id, text, at))

} // namespace dev_item

/// One entry of a session's transcript as it is kept: a line of JSON with exactly one key, the case's name, whose value
/// is the object of the case's fields. A value; any thread.
struct DevTranscriptItem {
    using Case = std::variant<dev_item::User, dev_item::Assistant, dev_item::Tool, dev_item::File, dev_item::Permission,
                              dev_item::Turn, dev_item::Failure, dev_item::Notice>;
    Case item = {};
    bool operator==(const DevTranscriptItem &) const = default;

    QString id() const;
    QString at() const;

    /// @return the item, or why the text is none, in words for the log
    static std::expected<DevTranscriptItem, QString> decode(QByteArrayView text);
    /// One line, without the line feed.
    QByteArray encode() const;
};

} // namespace lmp
