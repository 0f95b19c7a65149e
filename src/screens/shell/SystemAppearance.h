#pragma once

#include <QObject>

class QDBusMessage;

namespace lmp {

/// What the desktop asks of every program: dark or light, and whether things may move.
///
/// Owned by the appearance, UI thread. Where the desktop says nothing the palette tells dark from light, and things
/// move. Nothing fails outwards and nothing is waited for: an answer comes as a change.
class SystemAppearance : public QObject {
    Q_OBJECT
public:
    explicit SystemAppearance(QObject *parent = nullptr);

    /// Asks the desktop and follows what it says from now on. Once, and after the first paint: it takes a bus.
    void follow();

    /// What the desktop prefers; where it has not said so, what the palette looks like.
    bool dark() const;
    bool reducedMotion() const { return m_motionReduced || m_animationsOff; }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void onSettingChanged(const QDBusMessage &message);

private:
    enum class Scheme { Unsaid, Light, Dark };
    void ask(const QString &group, const QString &key);
    void take(const QString &group, const QString &key, const QVariant &value);

    Scheme m_scheme = Scheme::Unsaid;
    bool m_motionReduced = false;
    bool m_animationsOff = false;
};

} // namespace lmp
