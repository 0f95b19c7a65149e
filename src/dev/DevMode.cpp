#include "dev/DevMode.h"

namespace lmp {

QString devModeName(DevMode mode) {
    switch (mode) {
    case DevMode::readOnly:
        return QStringLiteral("只看不改");
    case DevMode::acceptEdits:
        return QStringLiteral("编辑自动");
    case DevMode::full:
        break;
    }
    return QStringLiteral("全自动");
}

} // namespace lmp
