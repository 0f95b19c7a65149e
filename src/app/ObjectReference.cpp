#include "app/ObjectReference.h"

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestId = 128;
constexpr qsizetype longestKind = 32;

bool isLowerLetter(QChar c) {
    return c >= u'a' && c <= u'z';
}

} // namespace

bool ObjectReference::isId(QStringView text) {
    const auto mayStand = [](QChar c) {
        return isLowerLetter(c) || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || u"-_.~:@=+"_s.contains(c);
    };
    return !text.isEmpty() && text.size() <= longestId && text != u"." && text != u".." &&
           std::ranges::all_of(text, mayStand);
}

std::optional<ObjectReference> ObjectReference::of(const QString &kind, const QString &id, const QString &step) {
    const bool isKind = !kind.isEmpty() && kind.size() <= longestKind && std::ranges::all_of(kind, isLowerLetter);
    const bool isApproval = kind == u"approval";
    if (!isKind || !isId(id) || (isApproval ? !isId(step) : !step.isEmpty()))
        return std::nullopt;
    return ObjectReference{kind, id, step};
}

std::optional<ObjectReference> ObjectReference::parse(QStringView text) {
    const auto colon = text.indexOf(u':');
    if (colon < 0)
        return std::nullopt;
    const QStringView rest = text.sliced(colon + 1);
    const auto slash = rest.indexOf(u'/');
    if (slash < 0)
        return of(text.first(colon).toString(), rest.toString());
    // A step that is there but empty is no step.
    const QStringView step = rest.sliced(slash + 1);
    return step.isEmpty() ? std::nullopt
                          : of(text.first(colon).toString(), rest.first(slash).toString(), step.toString());
}

QString ObjectReference::canonical() const {
    return kind + u':' + id + (step.isEmpty() ? QString() : u'/' + step);
}

} // namespace lmp
