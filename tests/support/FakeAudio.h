#pragma once

#include "platform/AudioOutput.h"

#include <QList>
#include <QPointer>

#include <memory>

namespace lmp {

/// Plays nothing and notes what it would have played; the test says how each piece ends, through the event loop.
class FakeAudio {
public:
    struct Piece {
        QByteArray audio;
        QString format;
    };

    std::unique_ptr<AudioOutput> make() {
        auto made = std::make_unique<Output>(*this);
        m_last = made.get();
        return made;
    }
    /// Ends the piece that plays, later. One that is gone says nothing.
    void end(AudioOutput::End how) {
        if (auto *output = m_last.data())
            QMetaObject::invokeMethod(output, [output, how] { Q_EMIT output->ended(how); }, Qt::QueuedConnection);
    }

    QList<Piece> played;

private:
    struct Output : AudioOutput {
        explicit Output(FakeAudio &fake)
            : owner(fake) {}
        void play(const QByteArray &audio, const QString &format) override { owner.played.push_back({audio, format}); }
        FakeAudio &owner;
    };

    QPointer<AudioOutput> m_last;
};

} // namespace lmp
