#include "identity/TruthStatus.h"

namespace lmp {

using namespace Qt::StringLiterals;

QString TruthStatus::label() const {
    switch (m_value) {
    case youSaid:
        return u"你确认过的事实"_s;
    case yourPreference:
        return u"你的偏好"_s;
    case iInferred:
        return u"我推断的"_s;
    case storySetting:
        return u"故事设定"_s;
    }
    return {};
}

} // namespace lmp
