#include "screens/shell/IdleIncubation.h"

namespace lmp {

namespace {

/// Milliseconds: a quarter of a frame, so that frames and keys are still in time.
constexpr int slice = 4;

} // namespace

void IdleIncubation::incubatingObjectCountChanged(int count) {
    if (count > 0 && !m_timer.isActive())
        m_timer.start(0, this);
}

void IdleIncubation::timerEvent(QTimerEvent *) {
    incubateFor(slice);
    if (incubatingObjectCount() == 0)
        m_timer.stop();
}

} // namespace lmp
