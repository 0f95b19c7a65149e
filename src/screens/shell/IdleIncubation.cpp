#include "screens/shell/IdleIncubation.h"

namespace lmp {

namespace {

/// Milliseconds: an eighth of a frame. What is begun is finished, so a slice runs over, and a key or a
/// frame that comes meanwhile waits for it.
constexpr int slice = 2;

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
