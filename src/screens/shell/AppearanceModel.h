#pragma once

#include "platform/Settings.h"
#include "screens/shell/SystemAppearance.h"

#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// How everything looks: the person's choice of theme and scale, joined with what the desktop asks for.
///
/// One for the process, shared by its windows, owned by the window's application; UI thread. A choice is kept at once;
/// one that cannot be kept holds until the program ends.
class AppearanceModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    Q_PROPERTY(Choice choice READ choice WRITE setChoice NOTIFY choiceChanged)
    Q_PROPERTY(qreal scale READ scale WRITE setScale NOTIFY scaleChanged)
    Q_PROPERTY(QList<QString> scaleTexts READ scaleTexts CONSTANT)
    Q_PROPERTY(int scaleStep READ scaleStep WRITE setScaleStep NOTIFY scaleChanged)
    Q_PROPERTY(bool dark READ dark NOTIFY darkChanged)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged)
public:
    enum class Choice { System, Light, Dark };
    Q_ENUM(Choice)

    static const QString themeKey;
    static const QString scaleKey;
    /// What the desktop last preferred, so that the first paint has the right colours before the desktop has answered.
    static const QString systemKey;

    /// @param settings outlives the model
    explicit AppearanceModel(Settings &settings, QObject *parent = nullptr);

    /// Begins to follow the desktop; after the first paint.
    void follow() { m_system.follow(); }

    Choice choice() const { return m_choice; }
    void setChoice(Choice choice);
    /// One of `scaleSteps`, as a factor.
    qreal scale() const { return scaleSteps().at(m_step) / 100.0; }
    /// Takes the step nearest to `scale`.
    void setScale(qreal scale);
    /// Per cent.
    static QList<int> scaleSteps() { return {85, 100, 115, 130, 160}; }
    static QStringList scaleTexts();
    int scaleStep() const { return m_step; }
    void setScaleStep(int step);
    Q_INVOKABLE void larger() { setScaleStep(m_step + 1); }
    Q_INVOKABLE void smaller() { setScaleStep(m_step - 1); }
    Q_INVOKABLE void resetScale() { setScale(1.0); }

    bool dark() const { return m_dark; }
    bool reducedMotion() const { return m_reducedMotion; }

Q_SIGNALS:
    void choiceChanged();
    /// Everything still has its place, and will not have it once the scale has changed.
    void scaleChanging();
    void scaleChanged();
    void darkChanged();
    void reducedMotionChanged();

private:
    void load();
    void settle();
    void onSystemChanged();

    Settings &m_settings;
    SystemAppearance m_system;
    Choice m_choice = Choice::System;
    int m_step = 1;
    bool m_systemDark = false;
    bool m_dark = false;
    bool m_reducedMotion = false;
};

} // namespace lmp
