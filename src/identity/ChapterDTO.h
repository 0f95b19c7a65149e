#pragma once

#include <QList>
#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// A chapter of the owner's story that the service proposes.
struct ChapterDTO {
    QString id;
    qint64 n = 0; ///< ordinal
    QString title;
    QString date;
    QString real;
    QString story;
    QList<QString> evidence;
    std::optional<bool> pending;
    bool operator==(const ChapterDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(ChapterDTO, (), (id, n, title, date, real, story, evidence, pending))

} // namespace lmp
