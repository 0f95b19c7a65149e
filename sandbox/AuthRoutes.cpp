// Signing in, in all its ways; the guest trial; the handle.
#include "CrisisDetector.h"
#include "CrisisDirectory.h"
#include "HandleRules.h"
#include "SandboxCrypto.h"
#include "SandboxFailure.h"
#include "SandboxRouter.h"
#include "SandboxServices.h"

namespace lmp::sandbox {

namespace {

SandboxAnswer codeAnswer(const std::string &code) {
    return SandboxAnswer::json({{"ok", true}, {"devCode", code}});
}

SandboxAnswer signedIn(SandboxServices &services, const SandboxAccounts::SignIn &signIn) {
    return SandboxAnswer::json({{"userInfo", signIn.account.userInfo()},
                                {"token", services.tokens.issue(signIn.account.id)},
                                {"type", signIn.created ? "register" : "login"}});
}

/// The phone number or the e-mail address that a reset is about.
struct ResetTarget {
    std::optional<PhoneNumber> phone;
    std::string email;
    std::string text() const { return phone ? phone->dialCode + phone->digits : email; }
};

ResetTarget resetTarget(SandboxServices &services, const JsonFields &fields) {
    ResetTarget target;
    if (const auto phone = fields.optionalText("phone"); phone && !phone->empty())
        target.phone = normalizedPhone(*phone, fields.optionalText("dialCode").value_or(""));
    else
        target.email = normalizedEmail(fields.text("email"));
    const bool known =
        target.phone ? services.accounts.phoneIsKnown(*target.phone) : services.accounts.emailIsTaken(target.email);
    if (!known)
        throw SandboxFailure(404, "account_not_found", "没有找到这个账号。");
    return target;
}

void addCodes(SandboxRouter &router, SandboxServices &services) {
    router.post("/api/app/auth/sms", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        const JsonFields fields(body);
        const auto phone = normalizedPhone(fields.text("phone"), fields.optionalText("dialCode").value_or(""));
        return codeAnswer(services.codes.issue("sms", phone.dialCode + phone.digits));
    });
    router.post("/api/app/auth/email", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        return codeAnswer(services.codes.issue("email", normalizedEmail(JsonFields(body).text("email"))));
    });
    router.post("/api/app/auth/reset-code", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        return codeAnswer(services.codes.issue("reset", resetTarget(services, JsonFields(body)).text()));
    });
    router.post("/api/app/auth/reset", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        const JsonFields fields(body);
        const auto password = fields.text("newPassword");
        const auto target = resetTarget(services, fields);
        requireUsablePassword(password);
        services.codes.redeem("reset", target.text(), fields.text("code"));
        if (target.phone)
            services.accounts.resetPhonePassword(*target.phone, password);
        else
            services.accounts.resetEmailPassword(target.email, password);
        return SandboxAnswer::json({{"ok", true}});
    });
}

void addSignIns(SandboxRouter &router, SandboxServices &services) {
    router.post("/api/app/auth/sms-login", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        const JsonFields fields(body);
        const auto phone = normalizedPhone(fields.text("phone"), fields.optionalText("dialCode").value_or(""));
        const auto invite = fields.optionalText("inviteCode", 64).value_or("");
        services.codes.redeem("sms", phone.dialCode + phone.digits, fields.text("code"));
        return signedIn(services, services.accounts.withPhone(phone, invite));
    });
    router.post("/api/app/auth/login", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        const JsonFields fields(body);
        std::string digits;
        for (const char c : fields.text("phone"))
            if (c >= '0' && c <= '9')
                digits += c;
        return signedIn(services, services.accounts.withPhonePassword(digits, fields.text("password")));
    });
    router.post("/api/app/auth/email-login", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        const JsonFields fields(body);
        return signedIn(services, services.accounts.withEmailPassword(normalizedEmail(fields.text("email")),
                                                                      fields.text("password")));
    });
    router.post("/api/app/auth/email-register", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        const JsonFields fields(body);
        const auto email = normalizedEmail(fields.text("email"));
        const auto password = fields.text("password");
        const auto code = fields.text("code");
        const auto invite = fields.optionalText("inviteCode", 64).value_or("");
        requireUsablePassword(password);
        if (services.accounts.emailIsTaken(email))
            throw SandboxFailure(409, "email_taken", "这个邮箱已经注册过，请直接登录。");
        services.codes.redeem("email", email, code);
        return signedIn(services, services.accounts.registerEmail(email, password, invite));
    });
    router.post("/api/app/auth/google", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        const JsonFields fields(body);
        const auto nonce = fields.optionalText("nonce").value_or("");
        return signedIn(
            services, services.accounts.withProvider(services.google.identityOf(fields.text("idToken", 16384), nonce)));
    });
    router.post("/api/app/auth/apple", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        const JsonFields fields(body);
        auto identity = services.apple.identityOf(fields.text("identityToken", 16384));
        identity.name = fields.optionalText("fullName", 100).value_or("");
        return signedIn(services, services.accounts.withProvider(identity));
    });
    router.get("/api/app/auth/me", [&services](const SandboxRequest &request) {
        const auto account = services.accounts.byId(services.tokens.userOf(request));
        if (!account)
            throw SandboxFailure::unauthorized();
        return SandboxAnswer::json({{"userInfo", account->userInfo()}});
    });
}

void addGuestTrial(SandboxRouter &router, SandboxServices &services) {
    router.post("/api/app/guest/session", [&services](const SandboxRequest &) {
        const auto session = services.guests.open();
        const auto note = "不用登录，先聊 " + std::to_string(session.roundsLeft) + " 轮。试聊的内容不会被记住。";
        return SandboxAnswer::json(
            {{"guest", {{"token", session.token}, {"roundsLeft", session.roundsLeft}, {"note", note}}}});
    });
    router.post("/api/app/guest/chat", [&services](const SandboxRequest &request) {
        const auto body = request.json();
        const JsonFields fields(body);
        const auto token = fields.text("guestToken");
        TwinContext context;
        context.messages = {{"user", fields.text("message", 65536)}};
        context.crisisLayer = CrisisDetector::layerOf(context.userText());
        context.incognito = true;
        services.guests.requireRound(token);
        const auto speech = services.voice.speak(context, 300, false);
        std::string reply;
        auto piece = speech.source->next(std::chrono::seconds(1));
        for (; !services.stop.stopped() &&
               (piece.kind == ReplySource::Piece::Kind::text || piece.kind == ReplySource::Piece::Kind::waiting);
             piece = speech.source->next(std::chrono::seconds(1)))
            reply += piece.text;
        if (piece.kind != ReplySource::Piece::Kind::finished)
            throw SandboxFailure(502, "upstream_failed", "模型服务中断了，这一轮不计次数。");
        boost::json::object answer{{"reply", reply}, {"roundsLeft", services.guests.takeRound(token)}};
        if (context.crisisLayer)
            answer["safety"] = CrisisDirectory::safetyBlock(*context.crisisLayer, "");
        return SandboxAnswer::json(answer);
    });
}

void addHandles(SandboxRouter &router, SandboxServices &services) {
    router.get("/api/app/handle/check", [&services](const SandboxRequest &request) {
        const auto user = services.tokens.userOf(request);
        const auto handle = HandleRules::normalized(request.param("handle"));
        auto reason = HandleRules::objection(handle);
        const auto owner = services.accounts.handleOwner(handle);
        if (reason.empty() && !owner.empty() && owner != user)
            reason = "这个名字已经有人用了。";
        boost::json::object answer{{"available", reason.empty()}, {"handle", handle}};
        if (reason.empty())
            answer["twinHandle"] = HandleRules::twinOf(handle);
        else
            answer["reason"] = reason;
        return SandboxAnswer::json(answer);
    });
    router.get("/api/app/handle/suggest", [&services](const SandboxRequest &request) {
        const auto account = services.accounts.byId(services.tokens.userOf(request));
        if (!account)
            throw SandboxFailure::unauthorized();
        boost::json::array suggestions;
        for (const auto &candidate : HandleRules::candidates(*account))
            if (suggestions.size() < 3 && services.accounts.handleOwner(candidate).empty())
                suggestions.push_back(boost::json::string(candidate));
        boost::json::object answer{{"suggestions", std::move(suggestions)}};
        if (!account->handle.empty())
            answer["current"] = account->handle;
        return SandboxAnswer::json(answer);
    });
    router.post("/api/app/handle", [&services](const SandboxRequest &request) {
        const auto user = services.tokens.userOf(request);
        const auto body = request.json();
        const auto handle = HandleRules::normalized(JsonFields(body).text("handle"));
        if (const auto reason = HandleRules::objection(handle); !reason.empty())
            throw SandboxFailure(400, "handle_invalid", reason);
        services.accounts.setHandle(user, handle);
        return SandboxAnswer::json({{"handle", handle}, {"twinHandle", HandleRules::twinOf(handle)}});
    });
}

} // namespace

void addAuthRoutes(SandboxRouter &router, SandboxServices &services) {
    addCodes(router, services);
    addSignIns(router, services);
    addGuestTrial(router, services);
    addHandles(router, services);
}

} // namespace lmp::sandbox
