#pragma once

#include "screens/account/AccountServices.h"

#include <QtQml/qqmlregistration.h>

#include <QStringList>

namespace lmp {

/// The sign-in screen's side of LoginModel: one property a field, and each sentence beside the field it is about.
///
/// Owned by SessionModel, UI thread. Passwords and codes leave with `forget`, which a sign-in calls, and passwords with
/// a change of mode.
class SignInModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by SessionModel")
    Q_PROPERTY(lmp::SignInModel::Mode mode READ mode WRITE setMode NOTIFY changed)
    Q_PROPERTY(int way READ way NOTIFY changed)
    Q_PROPERTY(QList<QString> dialLabels READ dialLabels CONSTANT)
    Q_PROPERTY(int dialIndex READ dialIndex WRITE setDialIndex NOTIFY changed)
    Q_PROPERTY(QString phone READ phone WRITE setPhone NOTIFY changed)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY changed)
    Q_PROPERTY(QString code READ code WRITE setCode NOTIFY changed)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY changed)
    Q_PROPERTY(QString newPassword READ newPassword WRITE setNewPassword NOTIFY changed)
    Q_PROPERTY(QString inviteCode READ inviteCode WRITE setInviteCode NOTIFY changed)
    Q_PROPERTY(bool resetByEmail READ resetByEmail WRITE setResetByEmail NOTIFY changed)
    Q_PROPERTY(bool asksPhone READ asksPhone NOTIFY changed)
    Q_PROPERTY(bool asksCode READ asksCode NOTIFY changed)
    Q_PROPERTY(bool asksPassword READ asksPassword NOTIFY changed)
    Q_PROPERTY(bool asksInvite READ asksInvite NOTIFY changed)
    Q_PROPERTY(QString phoneMessage READ phoneMessage NOTIFY changed)
    Q_PROPERTY(QString emailMessage READ emailMessage NOTIFY changed)
    Q_PROPERTY(QString codeMessage READ codeMessage NOTIFY changed)
    Q_PROPERTY(QString passwordMessage READ passwordMessage NOTIFY changed)
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(QString codeNotice READ codeNotice NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
    Q_PROPERTY(bool sending READ sending NOTIFY changed)
    Q_PROPERTY(bool submitting READ submitting NOTIFY changed)
    Q_PROPERTY(bool canSendCode READ canSendCode NOTIFY changed)
    Q_PROPERTY(QString sendText READ sendText NOTIFY changed)
    Q_PROPERTY(QString submitText READ submitText NOTIFY changed)
    Q_PROPERTY(bool offersGoogle READ offersGoogle NOTIFY changed)
    Q_PROPERTY(bool offersApple READ offersApple NOTIFY changed)
    Q_PROPERTY(QString providerText READ providerText NOTIFY changed)
    Q_PROPERTY(bool providerCancels READ providerCancels NOTIFY changed)
    /// What the keyboards of screens and input methods offer. From here, because a binding that computes with Qt's own
    /// enumerations has the engine copy all of them first, which a start would wait for.
    Q_PROPERTY(Qt::InputMethodHints addressHints READ addressHints NOTIFY changed)
    Q_PROPERTY(Qt::InputMethodHints codeHints READ codeHints CONSTANT)
    /// Where to go on, for somebody whose browser did not come up; and whether the desktop took it.
    Q_PROPERTY(QString providerLink READ providerLink NOTIFY changed)
    Q_PROPERTY(bool providerOpened READ providerOpened NOTIFY changed)
public:
    enum class Mode { Sms, Password, EmailSignIn, EmailRegister, Reset };
    Q_ENUM(Mode)
    /// A field that something can be missing from.
    enum class Field { NoField, PhoneField, EmailField, CodeField, PasswordField };
    Q_ENUM(Field)

    explicit SignInModel(const AccountServices &services, QObject *parent = nullptr);

    Mode mode() const;
    void setMode(Mode mode);
    /// The mode as the person chooses it: 0 by phone and code, 1 by phone and password, 2 by e-mail.
    int way() const;
    Q_INVOKABLE void chooseWay(int way);

    static QStringList dialLabels();
    int dialIndex() const;
    void setDialIndex(int index);
    QString phone() const { return fields().phone; }
    void setPhone(const QString &phone);
    QString email() const { return fields().email; }
    void setEmail(const QString &email);
    /// The code of the current mode.
    QString code() const;
    void setCode(const QString &code);
    QString password() const { return fields().password; }
    void setPassword(const QString &password);
    QString newPassword() const { return fields().newPassword; }
    void setNewPassword(const QString &password);
    QString inviteCode() const { return fields().inviteCode; }
    void setInviteCode(const QString &code);
    bool resetByEmail() const { return fields().resetByEmail; }
    void setResetByEmail(bool byEmail);

    /// Whether the current mode goes by phone number; else it goes by e-mail address.
    bool asksPhone() const;
    bool asksCode() const;
    /// A password that is there already or is being set; a reset asks for `newPassword` instead.
    bool asksPassword() const;
    bool asksInvite() const;

    QString phoneMessage() const;
    QString emailMessage() const;
    QString codeMessage() const;
    QString passwordMessage() const;
    /// Why signing in, registering or resetting failed.
    QString message() const;
    /// What is good to know about the code, one sentence a line.
    QString codeNotice() const;
    /// Good news that is about no field.
    QString notice() const { return m_notice; }

    bool sending() const { return m_login->isSending(); }
    bool submitting() const { return m_login->isSubmitting() || !m_providerText.isEmpty(); }
    /// Whether asking for a code does anything now; `sendCode` says what is missing.
    bool canSendCode() const { return !sending() && m_login->resendIn() == 0 && !submitting(); }
    QString sendText() const;
    QString submitText() const;
    bool offersGoogle() const { return m_login->offersGoogle(); }
    bool offersApple() const { return m_login->offersApple(); }
    /// Set while a provider's page is waited for.
    const QString &providerText() const { return m_providerText; }
    /// Whether `cancelProvider` ends what is waited for; a sheet of the system has a button of its own.
    bool providerCancels() const { return m_providerCancels; }
    Qt::InputMethodHints addressHints() const {
        return asksPhone() ? Qt::ImhDialableCharactersOnly : Qt::ImhEmailCharactersOnly;
    }
    Qt::InputMethodHints codeHints() const { return Qt::ImhPreferNumbers | Qt::ImhNoPredictiveText; }
    /// The provider's page, while it is waited for.
    QString providerLink() const { return m_providerLink; }
    bool providerOpened() const { return m_providerOpened; }

    /// Set once a provider has made a new account; gone with `forget`.
    std::optional<LoginModel::NewAccountNotice> newAccountNotice() const { return m_login->newAccountNotice(); }
    /// Drops everything typed, passwords and codes first.
    void forget();

    /// Sends the code of the current mode. @return the field to go to when there is nowhere to send it
    Q_INVOKABLE lmp::SignInModel::Field sendCode();
    /// Signs in, registers or resets. @return the field to go to when something is missing; nothing is sent then
    Q_INVOKABLE lmp::SignInModel::Field submit();
    Q_INVOKABLE void signInWithGoogle();
    Q_INVOKABLE void signInWithApple();
    /// Ends a provider's attempt that is under way.
    Q_INVOKABLE void cancelProvider();

Q_SIGNALS:
    void changed();

private:
    enum class Action { None, SendCode, Submit };

    const LoginModel::Fields &fields() const { return m_login->fields(); }
    bool codeIsByEmail() const;
    void set(QString LoginModel::Fields::*field, const QString &value, Field about);
    void edit(const LoginModel::Fields &fields, Field about);
    void begin(Action action);
    void makeLogin();
    Field firstMissing() const;
    /// Whether the last code was asked for by who is in the field now.
    bool tellsOfCode() const;
    QString missing(Field field, const QString &text) const { return m_missing == field ? text : QString(); }
    QCoro::Task<> submitNow();
    void startProvider(const QString &text, bool cancels);
    QCoro::Task<> waitForProvider(QCoro::Task<> attempt);

    AccountServices m_services;
    std::unique_ptr<LoginModel> m_login; ///< never null
    Action m_action = Action::None;
    Field m_missing = Field::NoField;
    QString m_providerText;
    bool m_providerCancels = false;
    QString m_providerLink;
    bool m_providerOpened = false;
    QStringList m_codeNotices;
    QString m_codeAddress; ///< whom they are about
    QString m_notice;
};

} // namespace lmp
