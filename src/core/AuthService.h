#pragma once

#include "core/APIClient.h"
#include "core/AuthAnswers.h"
#include "core/AuthRequests.h"
#include "core/GuestTrialRecords.h"
#include "core/HandleRecords.h"

namespace lmp {

/// The service's sign-in endpoints, the guest trial and the handle: one request each, nothing remembered.
///
/// A value; any thread with an event loop. A task lives on when the service it came from is gone.
class AuthService {
public:
    explicit AuthService(APIClient api);

    QCoro::Task<Result<SendCodeResponse>> sendSms(const SendSmsReq &body) const;
    QCoro::Task<Result<SendCodeResponse>> sendEmail(const SendEmailReq &body) const;
    /// Makes the account when the number is new.
    QCoro::Task<Result<AuthResponse>> smsLogin(const SmsLoginReq &body) const;
    QCoro::Task<Result<AuthResponse>> passwordLogin(const PwdLoginReq &body) const;
    QCoro::Task<Result<AuthResponse>> emailLogin(const EmailLoginReq &body) const;
    QCoro::Task<Result<AuthResponse>> emailRegister(const EmailRegisterReq &body) const;
    QCoro::Task<Result<AuthResponse>> googleLogin(const GoogleReq &body) const;
    QCoro::Task<Result<AuthResponse>> appleLogin(const AppleReq &body) const;
    QCoro::Task<Result<SendCodeResponse>> requestResetCode(const ResetCodeReq &body) const;
    QCoro::Task<Result<ResetResp>> resetPassword(const ResetReq &body) const;
    QCoro::Task<Result<MeResponse>> me(std::stop_token stop = {}) const;

    QCoro::Task<Result<SessionResp>> guestSession() const;
    QCoro::Task<Result<ChatResp>> guestChat(const ChatBody &body) const;

    /// @param input whatever was typed; it is percent-encoded here
    QCoro::Task<Result<CheckResp>> checkHandle(const QString &input) const;
    QCoro::Task<Result<SuggestResp>> suggestHandles() const;
    QCoro::Task<Result<SetResp>> setHandle(const SetBody &body) const;

private:
    APIClient m_api;
};

} // namespace lmp
