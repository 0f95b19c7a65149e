#pragma once

#include "platform/Settings.h"

#include <QHash>

namespace lmp {

/// Settings that live as long as the test, and can be made to refuse.
class MemorySettings : public Settings {
public:
    std::optional<QByteArray> value(const QString &key) const override {
        const auto it = values.constFind(key);
        return it == values.constEnd() ? std::nullopt : std::optional(*it);
    }
    bool setValue(const QString &key, const QByteArray &value) override {
        if (!full)
            values.insert(key, value);
        return !full;
    }
    bool remove(const QString &key) override {
        if (!full)
            values.remove(key);
        return !full;
    }

    QHash<QString, QByteArray> values;
    bool full = false;
};

} // namespace lmp
