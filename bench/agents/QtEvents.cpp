// The peer that most Qt programs would write: bench_qt_events PROGRAM, what is said out of QProcess by QJsonDocument.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <cstdio>

namespace {

class Reader {
public:
    void take(const QByteArray &bytes) {
        m_buffer += bytes;
        qsizetype start = 0;
        for (qsizetype end; (end = m_buffer.indexOf('\n', start)) >= 0; start = end + 1)
            takeLine(QByteArray::fromRawData(m_buffer.constData() + start, end - start));
        m_buffer.remove(0, start);
    }
    void print(double ms) const { std::printf("ms=%.1f events=%lld sum=%lld\n", ms, m_events, m_units); }

private:
    void takeLine(const QByteArray &line) {
        const auto message = QJsonDocument::fromJson(line).object();
        if (message.value(QLatin1String("type")).toString() != QLatin1String("assistant"))
            return;
        ++m_events;
        const auto content = message.value(QLatin1String("message")).toObject().value(QLatin1String("content"));
        for (const auto block : content.toArray())
            m_units += block.toObject().value(QLatin1String("text")).toString().size();
    }

    QByteArray m_buffer;
    qint64 m_events = 0;
    qint64 m_units = 0;
};

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    Reader reader;
    QProcess process;
    QElapsedTimer timer;
    timer.start();
    QObject::connect(&process, &QProcess::readyReadStandardOutput,
                     [&] { reader.take(process.readAllStandardOutput()); });
    QObject::connect(&process, &QProcess::finished, [&] {
        reader.take(process.readAllStandardOutput());
        reader.print(double(timer.nsecsElapsed()) / 1e6);
        QCoreApplication::quit();
    });
    process.start(QString::fromLocal8Bit(argv[1]), {}, QIODevice::ReadOnly);
    return QCoreApplication::exec();
}
