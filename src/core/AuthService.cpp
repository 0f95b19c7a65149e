#include "core/AuthService.h"

namespace lmp {

using namespace Qt::StringLiterals;

AuthService::AuthService(APIClient api)
    : m_api(std::move(api)) {}

QCoro::Task<Result<SendCodeResponse>> AuthService::sendSms(const SendSmsReq &body) const {
    return m_api.request<SendCodeResponse>(u"/app/auth/sms"_s, "POST", body);
}

QCoro::Task<Result<SendCodeResponse>> AuthService::sendEmail(const SendEmailReq &body) const {
    return m_api.request<SendCodeResponse>(u"/app/auth/email"_s, "POST", body);
}

QCoro::Task<Result<AuthResponse>> AuthService::smsLogin(const SmsLoginReq &body) const {
    return m_api.request<AuthResponse>(u"/app/auth/sms-login"_s, "POST", body);
}

QCoro::Task<Result<AuthResponse>> AuthService::passwordLogin(const PwdLoginReq &body) const {
    return m_api.request<AuthResponse>(u"/app/auth/login"_s, "POST", body);
}

QCoro::Task<Result<AuthResponse>> AuthService::emailLogin(const EmailLoginReq &body) const {
    return m_api.request<AuthResponse>(u"/app/auth/email-login"_s, "POST", body);
}

QCoro::Task<Result<AuthResponse>> AuthService::emailRegister(const EmailRegisterReq &body) const {
    return m_api.request<AuthResponse>(u"/app/auth/email-register"_s, "POST", body);
}

QCoro::Task<Result<AuthResponse>> AuthService::googleLogin(const GoogleReq &body) const {
    return m_api.request<AuthResponse>(u"/app/auth/google"_s, "POST", body);
}

QCoro::Task<Result<AuthResponse>> AuthService::appleLogin(const AppleReq &body) const {
    return m_api.request<AuthResponse>(u"/app/auth/apple"_s, "POST", body);
}

QCoro::Task<Result<SendCodeResponse>> AuthService::requestResetCode(const ResetCodeReq &body) const {
    return m_api.request<SendCodeResponse>(u"/app/auth/reset-code"_s, "POST", body);
}

QCoro::Task<Result<ResetResp>> AuthService::resetPassword(const ResetReq &body) const {
    return m_api.request<ResetResp>(u"/app/auth/reset"_s, "POST", body);
}

QCoro::Task<Result<MeResponse>> AuthService::me(std::stop_token stop) const {
    return m_api.request<MeResponse>(u"/app/auth/me"_s, "GET", false, std::move(stop));
}

QCoro::Task<Result<SessionResp>> AuthService::guestSession() const {
    return m_api.request<SessionResp>(u"/app/guest/session"_s, "POST", APIClient::Empty());
}

QCoro::Task<Result<ChatResp>> AuthService::guestChat(const ChatBody &body) const {
    return m_api.request<ChatResp>(u"/app/guest/chat"_s, "POST", body);
}

QCoro::Task<Result<CheckResp>> AuthService::checkHandle(const QString &input) const {
    return m_api.request<CheckResp>(u"/app/handle/check?handle="_s +
                                    QString::fromLatin1(QUrl::toPercentEncoding(input)));
}

QCoro::Task<Result<SuggestResp>> AuthService::suggestHandles() const {
    return m_api.request<SuggestResp>(u"/app/handle/suggest"_s);
}

QCoro::Task<Result<SetResp>> AuthService::setHandle(const SetBody &body) const {
    return m_api.request<SetResp>(u"/app/handle"_s, "POST", body);
}

} // namespace lmp
