#include "screens/shell/WindowOptions.h"

#include "app/DeepLink.h"
#include "platform/ApplicationSupport.h"

namespace lmp {

using namespace Qt::StringLiterals;

std::expected<WindowOptions, QString> WindowOptions::parse(const QStringList &arguments) {
    WindowOptions options;
    bool sandbox = false;
    const auto field = [&options](const QString &name) -> QString * {
        return name == u"--site"_s ? &options.site : name == u"--profile"_s ? &options.profile : nullptr;
    };
    for (qsizetype at = 0; at < arguments.size(); ++at) {
        const QString &argument = arguments[at];
        const qsizetype equals = argument.indexOf(u'=');
        if (QString *value = field(argument.left(equals))) {
            if (equals < 0 && at + 1 == arguments.size())
                return std::unexpected(argument + u" 后面要有一个值。"_s);
            *value = equals < 0 ? arguments[++at] : argument.mid(equals + 1);
        } else if (argument == u"--sandbox"_s)
            sandbox = true;
        else if (DeepLink::isLink(argument)) {
            // The first of several, as in a program that runs already.
            if (options.link.isEmpty())
                options.link = argument;
        } else
            return std::unexpected(u"不认识这个参数："_s + argument);
    }
    if (sandbox && !options.site.isEmpty())
        return std::unexpected(u"--site 和 --sandbox 不能同时用。"_s);
    if (!options.profile.isEmpty() && !ApplicationSupport::isProfileName(options.profile))
        return std::unexpected(u"--profile 只能用字母、数字、- 和 _。"_s);
    if (options.site.isEmpty() && !sandbox)
        options.site = qEnvironmentVariable("LMP_SITE");
    options.named = sandbox || !options.site.isEmpty();
    return options;
}

QStringList WindowOptions::arguments() const {
    QStringList given;
    if (!site.isEmpty())
        given << u"--site="_s + site;
    else if (named)
        given << u"--sandbox"_s;
    if (!profile.isEmpty())
        given << u"--profile="_s + profile;
    return given;
}

} // namespace lmp
