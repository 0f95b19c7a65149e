// The peer that most Qt programs would write: bench_qt_event_reader URL count|json
//
// count: bytes only, the floor of anything built on QNetworkAccessManager. json: lines out of a growing buffer, each
// event through QJsonDocument, the deltas into one text.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include "Report.h"

using namespace Qt::StringLiterals;

namespace {

class Reader {
public:
    explicit Reader(bool json)
        : m_json(json) {}

    lmp::bench::Report report;

    void take(const QByteArray &bytes) {
        report.bytes += bytes.size();
        if (!m_json)
            return;
        m_buffer += bytes;
        qsizetype start = 0;
        for (qsizetype end; (end = m_buffer.indexOf('\n', start)) >= 0; start = end + 1)
            takeLine(QByteArrayView(m_buffer).sliced(start, end - start));
        m_buffer.remove(0, start);
    }

    qsizetype textSize() const { return m_text.size(); }

private:
    void takeLine(QByteArrayView line) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.startsWith("data:"))
            m_data += line.sliced(line.startsWith("data: ") ? 6 : 5);
        else if (line.isEmpty() && !m_data.isEmpty())
            takeEvent(std::exchange(m_data, {}));
    }

    void takeEvent(const QByteArray &data) {
        ++report.events;
        const QJsonObject frame = QJsonDocument::fromJson(data).object();
        m_text += frame.value("delta"_L1).toString();
        if (const qint64 sent = frame.value("t"_L1).toInteger())
            report.tookSince(sent);
    }

    bool m_json;
    QByteArray m_buffer;
    QByteArray m_data;
    QString m_text;
};

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    if (argc != 3)
        return 2;
    Reader reader(qstrcmp(argv[2], "json") == 0);
    QNetworkAccessManager manager;
    reader.report.start();
    auto *reply = manager.get(QNetworkRequest(QUrl(QString::fromLocal8Bit(argv[1]))));
    QObject::connect(reply, &QNetworkReply::readyRead, &app, [&] { reader.take(reply->readAll()); });
    QObject::connect(reply, &QNetworkReply::finished, &app, [&] {
        reader.take(reply->readAll());
        reader.report.print(reader.textSize());
        QCoreApplication::exit(reply->error() == QNetworkReply::NoError ? 0 : 1);
    });
    return QCoreApplication::exec();
}
