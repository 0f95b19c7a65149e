#pragma once

#include <QList>
#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

struct CheckResp {
    bool available = false;
    std::optional<QString> reason;
    std::optional<QString> handle;
    std::optional<QString> twinHandle;
};
BOOST_DESCRIBE_STRUCT(CheckResp, (), (available, reason, handle, twinHandle))

struct SuggestResp {
    QList<QString> suggestions;
    std::optional<QString> current;
};
BOOST_DESCRIBE_STRUCT(SuggestResp, (), (suggestions, current))

struct SetBody {
    QString handle;
};
BOOST_DESCRIBE_STRUCT(SetBody, (), (handle))

struct SetResp {
    QString handle;
    std::optional<QString> twinHandle;
    std::optional<QString> note;
};
BOOST_DESCRIBE_STRUCT(SetResp, (), (handle, twinHandle, note))

} // namespace lmp
