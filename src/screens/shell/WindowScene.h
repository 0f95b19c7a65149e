#pragma once

#include "screens/shell/AppearanceModel.h"

namespace lmp {

class Application;

/// What one window shows: the screen it is at, its own place, and the models its screens draw from.
///
/// One for each window, owned by WindowApplication and gone with its window; UI thread. It is there before the stores
/// are, so that something can be drawn at once: until `adopt` it is `Opening`.
class WindowScene : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")
    Q_PROPERTY(lmp::AppearanceModel *appearance READ appearance CONSTANT)
    Q_PROPERTY(lmp::WindowScene::Stage stage READ stage NOTIFY stageChanged)
    /// Why there is no service; empty while it is being looked for.
    Q_PROPERTY(QString openError READ openError NOTIFY openErrorChanged)
public:
    enum class Stage { Opening, Launch, SignedOut, Shell };
    Q_ENUM(Stage)

    /// @param appearance outlives the scene
    explicit WindowScene(AppearanceModel &appearance, QObject *parent = nullptr);
    ~WindowScene() override;

    /// Takes the stores; once, when the application is open. It outlives the scene.
    void adopt(Application &application);
    void setOpenError(const QString &error);

    AppearanceModel *appearance() { return &m_appearance; }
    Stage stage() const { return m_stage; }
    const QString &openError() const { return m_openError; }

    Q_INVOKABLE void reopen();
    /// Whether the window may close now; when it is the last one, that is asked of whoever has something to lose.
    Q_INVOKABLE bool mayClose();

Q_SIGNALS:
    void stageChanged();
    void openErrorChanged();
    void reopenRequested();
    void closeRequested();

private:
    void settleStage();

    AppearanceModel &m_appearance;
    Application *m_application = nullptr;
    Stage m_stage = Stage::Opening;
    QString m_openError;
};

} // namespace lmp
