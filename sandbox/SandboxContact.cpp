#include "SandboxContact.h"

#include "FormText.h"
#include "SandboxFailure.h"

#include <algorithm>

namespace lmp::sandbox {

namespace {

std::string digitsOf(const std::string &text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](char c) { return c >= '0' && c <= '9'; });
    return digits;
}

} // namespace

PhoneNumber normalizedPhone(const std::string &phone, const std::string &dialCode) {
    PhoneNumber number{"+" + digitsOf(dialCode), digitsOf(phone)};
    if (number.dialCode == "+")
        number.dialCode = "+86";
    const auto count = number.digits.size();
    const bool usable = number.dialCode == "+86" ? count == 11 : count >= 6 && count <= 15;
    if (!usable || number.dialCode.size() > 5)
        throw SandboxFailure(400, "phone_invalid", "手机号不对，请核对后再试。");
    return number;
}

std::string normalizedEmail(const std::string &email) {
    std::string text;
    for (const char c : email)
        text += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    const auto at = text.find('@');
    const bool usable = at != std::string::npos && at > 0 && at + 1 < text.size() && text.rfind('@') == at &&
                        text.size() <= 254 && isUtf8(text) &&
                        std::none_of(text.begin(), text.end(), [](unsigned char c) { return c <= ' ' || c == 127; });
    if (!usable)
        throw SandboxFailure(400, "email_invalid", "邮箱地址不对，请核对后再试。");
    return text;
}

void requireUsablePassword(const std::string &password) {
    if (password.size() < 6 || password.size() > 256)
        throw SandboxFailure(400, "password_unusable", "密码需要 6 到 256 个字符。");
}

} // namespace lmp::sandbox
