#pragma once

#include "dev/DevMode.h"
#include "dev/DevPermissionDecision.h"

#include <QByteArrayView>
#include <QString>

#include <expected>
#include <variant>

namespace lmp {

/// One line that a program sends to `dev --jsonl`. A value.
struct DevControl {
    struct Send {
        QString text;
    };
    struct Respond {
        QString requestId;
        DevPermissionDecision decision;
    };
    struct SetMode {
        DevMode mode;
    };
    struct Interrupt {};
    struct Stop {};

    std::variant<Send, Respond, SetMode, Interrupt, Stop> what;

    /// @return the command, or what is wrong with the line, for whoever wrote the program
    static std::expected<DevControl, QString> parse(QByteArrayView line);
};

} // namespace lmp
