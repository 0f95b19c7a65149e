#include "platform/UserDefaults.h"

#include <QSettings>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

class NativeSettings : public Settings {
public:
    explicit NativeSettings(const QString &profile)
        : m_settings(u"com.tolvey"_s, profile.isEmpty() ? u"quillet"_s : u"quillet-"_s + profile) {}

    std::optional<QByteArray> value(const QString &key) const override {
        return m_settings.contains(key) ? std::optional(m_settings.value(key).toByteArray()) : std::nullopt;
    }
    bool setValue(const QString &key, const QByteArray &value) override {
        m_settings.setValue(key, value);
        return m_settings.status() == QSettings::NoError;
    }
    bool remove(const QString &key) override {
        m_settings.remove(key);
        return m_settings.status() == QSettings::NoError;
    }

private:
    QSettings m_settings;
};

} // namespace

std::unique_ptr<Settings> makeUserDefaults(const ApplicationSupport &support) {
    return std::make_unique<NativeSettings>(support.profile());
}

} // namespace lmp
