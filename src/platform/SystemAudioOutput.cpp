#include "platform/SystemAudioOutput.h"

#include "platform/Log.h"

#include <QCoreApplication>
#include <QPluginLoader>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

AudioBackend *backend() {
    static AudioBackend *const loaded = [] {
        QPluginLoader loader(QCoreApplication::applicationDirPath() + u"/lumenpair-audio"_s +
                             QStringLiteral(LMP_MODULE_SUFFIX));
        auto *made = qobject_cast<AudioBackend *>(loader.instance());
        if (!made)
            qCWarning(logPlatform) << "no sound:" << loader.errorString();
        return made;
    }();
    return loaded;
}

} // namespace

void SystemAudioOutput::play(const QByteArray &audio, const QString &format) {
    const auto end = [this](End how) {
        QMetaObject::invokeMethod(this, [this, how] { Q_EMIT ended(how); }, Qt::QueuedConnection);
    };
    auto *const module = backend();
    if (!module) {
        end(End::unplayable);
        return;
    }
    m_player = module->play(audio, format, [end](AudioBackend::End how) {
        end(how == AudioBackend::End::finished      ? End::finished
            : how == AudioBackend::End::interrupted ? End::interrupted
                                                    : End::unplayable);
    });
}

} // namespace lmp
