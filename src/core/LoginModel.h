#pragma once

#include "core/AppleSignInCoordinator.h"
#include "core/AuthStore.h"
#include "core/GoogleSignIn.h"

#include <QHash>

#include <chrono>

namespace lmp {

/// The state behind signing in: the fields of each way, what is wrong with them, and what the service said.
///
/// Owned by its screen or command, UI thread. Its coroutines may be awaited or detached; an answer that comes after
/// another sign-in is dropped. Passwords and codes live in the fields only.
class LoginModel : public QObject {
    Q_OBJECT
public:
    enum class Mode { sms, password, emailSignIn, emailRegister, reset };
    Q_ENUM(Mode)

    /// What the person types. `phone` is kept as typed; its digits are what is sent.
    struct Fields {
        QString dialCode = QStringLiteral("+86");
        QString phone;
        QString smsCode;
        QString password; ///< of the phone number or the e-mail address, after the mode
        QString email;
        QString emailCode;
        QString inviteCode;
        QString newPassword;
        bool resetByEmail = false;
    };
    /// Shown after a provider made a new account although the person may have an older one.
    struct NewAccountNotice {
        QString title, advice, close;
    };
    /// The ways that only some deployments and platforms have; null where there is none. They outlive the model.
    struct Providers {
        GoogleSignIn *google = nullptr;
        AppleSignInCoordinator *apple = nullptr;
    };

    static constexpr int resendSeconds = 60;

    /// @param store, clock outlive the model
    LoginModel(AuthStore &store, Clock &clock);
    LoginModel(AuthStore &store, Clock &clock, Providers providers);
    ~LoginModel() override;

    Mode mode() const { return m_mode; }
    const Fields &fields() const { return m_fields; }
    void setMode(Mode mode);
    /// Takes over all fields and validates them again: one call for each edit.
    void edit(const Fields &fields);

    /// What is wrong with the phone number; empty when nothing is, or when there is none yet.
    QString phoneMessage() const;
    /// The digits of the phone number, full-width ones included.
    QString phoneDigits() const;
    bool canSendCode() const;
    bool canSubmit() const;
    bool isSending() const { return m_sending; }
    bool isSubmitting() const { return m_submitting; }
    /// The phone number or the e-mail address that the mode asks for, as a code is sent to it; empty without one.
    QString address() const;
    /// Seconds until a code may be sent again to this address: it alone got the last one.
    int resendIn() const;
    /// The last good news, e.g. that a code is on its way.
    const QString &notice() const { return m_notice; }
    /// The last failure.
    const QString &message() const { return m_message; }
    const std::optional<NewAccountNotice> &newAccountNotice() const { return m_newAccount; }
    bool offersGoogle() const { return m_providers.google; }
    bool offersApple() const { return m_providers.apple && m_providers.apple->isAvailable(); }

    /// Sends the code of the current mode (SMS, e-mail or reset).
    QCoro::Task<> sendCode();
    /// Signs in, registers or resets the password, after the mode.
    QCoro::Task<> submit();
    QCoro::Task<> signInWithGoogle();
    QCoro::Task<> signInWithApple();
    /// Ends a provider's attempt that is under way.
    void cancelProvider();
    void closeNewAccountNotice();

Q_SIGNALS:
    void changed();
    /// Each notice as it comes; `notice` holds the last one only.
    void noticed(const QString &text);

private:
    using SignIn = QCoro::Task<Result<AuthResponse>>;

    bool usesPhone() const;
    bool phoneIsUsable() const { return !phoneDigits().isEmpty() && phoneMessage().isEmpty(); }
    QCoro::Task<Result<SendCodeResponse>> codeRequest() const;
    SignIn signInRequest() const;
    QCoro::Task<> signInThrough(SignIn request, bool provider);
    QCoro::Task<> resetPassword();
    QCoro::Task<> countDown();
    void fillCode(bool byEmail, const QString &code);
    void show(const QString &notice);
    void fail(const QString &message);
    void begin();
    void endSubmit();

    AuthStore &m_store;
    Clock &m_clock;
    Providers m_providers;
    Mode m_mode = Mode::sms;
    Fields m_fields;
    bool m_sending = false;
    bool m_submitting = false;
    QHash<QString, std::chrono::nanoseconds> m_sendableAt; ///< after the address, by the clock's monotonic time
    QString m_notice;
    QString m_message;
    std::optional<NewAccountNotice> m_newAccount;
    std::stop_source m_stop;
    std::stop_source m_providerStop;
};

} // namespace lmp
