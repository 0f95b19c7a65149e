#include "screens/gallery/GalleryRun.h"

#include "screens/gallery/ScreenAudit.h"
#include "screens/shell/QmlModules.h"

#include <QCoreApplication>
#include <QImage>
#include <QRegularExpression>

#include <cstdio>
#include <unordered_set>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr int looksEach = 30;           ///< ms
constexpr qint64 settingLasts = 20'000; ///< ms at most
constexpr qint64 restLasts = 120;       ///< ms without a change, before it counts as the last look
constexpr qint64 restComes = 4'000;     ///< ms at most
/// Fewer colours than this is an empty screen.
constexpr std::size_t leastColours = 6;

GalleryRun *running = nullptr;

bool showsSomething(const QImage &image) {
    std::unordered_set<QRgb> colours;
    for (int y = 0; y < image.height() && colours.size() < leastColours; ++y) {
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, y));
    }
    return colours.size() >= leastColours;
}

} // namespace

const QList<GalleryRun::Look> &GalleryRun::everyLook() {
    static const QList<Look> all = {{.name = u"light-100"_s},
                                    {.name = u"light-130"_s, .scale = 1.3},
                                    {.name = u"dark-100"_s, .dark = true},
                                    {.name = u"dark-130"_s, .dark = true, .scale = 1.3}};
    return all;
}

std::optional<GalleryRun::Look> GalleryRun::lookOf(const QString &name) {
    static const QRegularExpression form(u"^(light|dark)-(\\d{2,3})$"_s);
    const auto match = form.match(name);
    const int percent = match.captured(2).toInt();
    if (percent < 85 || percent > 160)
        return std::nullopt;
    return Look{.name = name, .dark = match.captured(1) == u"dark", .scale = percent / 100.0};
}

GalleryRun::GalleryRun(QString folder, QList<GalleryScene> scenes, QList<Look> looks)
    : m_folder(std::move(folder))
    , m_scenes(std::move(scenes))
    , m_looks(std::move(looks)) {
    QmlModules::provide(m_engine);
    m_engine.setOutputWarningsToStandardError(false);
    connect(&m_engine, &QQmlEngine::warnings, this, [this](const QList<QQmlError> &warnings) {
        for (const auto &warning : warnings)
            report(u"QML: "_s + warning.toString());
    });
    // Much of what the toolkit finds wrong with a screen it only says in the log.
    running = this;
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &text) {
        // What the program says of itself is of its scene, and what the platform cannot do is of none.
        const bool ours = QByteArrayView(context.category).startsWith("com.tolvey.quillet") ||
                          text.startsWith(u"This plugin does not support"_s);
        if (type == QtWarningMsg && !ours && running)
            running->report(u"log: "_s + text);
        else if (type != QtDebugMsg && type != QtInfoMsg)
            std::fprintf(stderr, "%s\n", qPrintable(text));
    });
    m_timer.setInterval(looksEach);
    connect(&m_timer, &QTimer::timeout, this, &GalleryRun::step);
}

GalleryRun::~GalleryRun() {
    qInstallMessageHandler(nullptr);
    running = nullptr;
}

void GalleryRun::start() {
    m_timer.start();
}

void GalleryRun::step() {
    if (!m_stage) {
        beginScene();
        return;
    }
    const bool set = m_look >= 0 || m_stage->advance();
    if (!set && m_since.elapsed() < settingLasts)
        return;
    if (!set || !m_stage->window()) {
        report(set ? u"shows no window"_s : u"waited in vain for: "_s + m_stage->waitingFor());
        endScene();
        return;
    }
    if (m_look < 0) {
        m_look = 0;
        apply(m_looks.front());
        return;
    }
    takePictures();
}

void GalleryRun::beginScene() {
    if (m_scene == m_scenes.size()) {
        m_timer.stop();
        std::fprintf(stderr, "%d faults in %d scenes\n", m_faults, int(m_scenes.size()));
        QCoreApplication::exit(m_faults == 0 ? 0 : 1);
        return;
    }
    m_sceneFaults.clear();
    m_look = -1;
    m_stage = std::make_unique<GalleryStage>(m_engine, m_scenes[m_scene].size);
    m_since.start();
    m_scenes[m_scene].set(*m_stage);
    if (m_stage->window())
        m_stage->setLook(m_looks.front().dark, m_looks.front().scale);
}

void GalleryRun::takePictures() {
    const QImage picture = m_stage->window()->grabWindow();
    if (picture != m_last) {
        m_last = picture;
        if (m_since.elapsed() < restComes) {
            m_since.restart();
            return;
        }
    }
    if (m_since.elapsed() < restLasts)
        return;
    const Look &look = m_looks[m_look];
    const auto size = m_stage->window()->size() * m_stage->window()->devicePixelRatio();
    if (picture.size() != size || !showsSomething(picture))
        report(u"is empty, or not as large as its window (%1)"_s.arg(look.name));
    for (const QString &fault : ScreenAudit::faults(*m_stage->window(), look.scale))
        report(fault + u" ("_s + look.name + u')');
    const QString file = m_folder + u'/' + m_scenes[m_scene].name + u'-' + look.name + u".png"_s;
    if (!picture.save(file))
        report(u"cannot be written to "_s + file);
    if (++m_look == m_looks.size())
        endScene();
    else
        apply(m_looks[m_look]);
}

void GalleryRun::endScene() {
    for (const QString &fault : m_stage->faults())
        report(fault);
    for (const QString &path : m_stage->service().unknown())
        report(u"asked for something that has no answer here: "_s + path);
    m_stage.reset();
    ++m_scene;
}

void GalleryRun::apply(const Look &look) {
    m_stage->setLook(look.dark, look.scale);
    m_last = {};
    m_since.restart();
}

void GalleryRun::report(const QString &fault) {
    if (m_sceneFaults.contains(fault))
        return;
    m_sceneFaults << fault;
    ++m_faults;
    const QString scene = m_scene < m_scenes.size() ? m_scenes[m_scene].name : QString();
    std::fprintf(stderr, "%s: %s\n", qPrintable(scene), fault.toUtf8().constData());
}

} // namespace lmp
