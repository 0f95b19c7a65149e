#include "terminal/CardText.h"

#include "conversation/ConversationTexts.h"
#include "core/PlainLabel.h"
#include "identity/CrisisTexts.h"

namespace lmp {

using namespace Qt::StringLiterals;

QString CardText::crisis(const CrisisSignal &signal) {
    QString text = u"┃ "_s + signal.guidance;
    if (!signal.hasVerifiedNumbers())
        return text + u"\n┃ "_s + CrisisTexts::cardWithoutNumbers();
    for (const CrisisResource &resource : signal.resources)
        text += u"\n┃ "_s + resource.label + u"  "_s + PlainLabel::line(resource.phone);
    return text;
}

QString CardText::continuousUse(const ContinuousUseNotice &notice) {
    return u"┃ "_s + notice.message;
}

QString CardText::used(const QList<UsedMemory> &used) {
    QString text = ConversationTexts::usedMemoriesNote(used.size());
    for (const UsedMemory &memory : used)
        text += u"\n  · "_s + PlainLabel::content(memory.content) + u"（"_s +
                ConversationTexts::usedMemoryTruth(memory.truth) + u"）"_s;
    return text;
}

QString CardText::charge(std::optional<qint64> charged, std::optional<qint64> balance) {
    const auto amount = [](std::optional<qint64> pip) {
        return pip ? QString::number(*pip) + u" Pip"_s : u"—"_s;
    };
    return u"本次 "_s + amount(charged) + u" · 余额 "_s + amount(balance);
}

} // namespace lmp
