#pragma once

#include "conversation/UsedMemory.h"

#include <QList>
#include <QString>

#include <boost/describe.hpp>
#include <boost/json/value.hpp>

#include <optional>

namespace lmp {

/// The plain route's answer. The safety blocks stay as they came: they are read leniently, so that they never spoil an
/// answer that was charged.
struct RelayChatResponse {
    QString text;
    QString model;
    qint64 pipCharged = 0;
    qint64 balance = 0;
    std::optional<QList<UsedMemory>> usedMemories;
    std::optional<QString> requestId;
    std::optional<boost::json::value> safety;
    std::optional<boost::json::value> continuousUse;
    bool operator==(const RelayChatResponse &) const = default;
};
BOOST_DESCRIBE_STRUCT(RelayChatResponse, (),
                      (text, model, pipCharged, balance, usedMemories, requestId, safety, continuousUse))

} // namespace lmp
