#include "screens/kit/LMPKeyboard.h"

#include <QQuickWindow>

namespace lmp {

QQuickItem *LMPKeyboard::holder(const QQuickItem *item) {
    const QQuickWindow *window = item ? item->window() : nullptr;
    if (!window)
        return nullptr;
    QQuickItem *at = window->activeFocusItem() ? window->activeFocusItem() : window->contentItem();
    while (at->isFocusScope() && at->scopedFocusItem())
        at = at->scopedFocusItem();
    return at == window->contentItem() ? nullptr : at;
}

} // namespace lmp
