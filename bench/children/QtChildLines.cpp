// The peer that most Qt programs would write: bench_qt_child_lines COMMAND..., lines out of a growing buffer that
// QProcess fills.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>

#include <cstdio>

namespace {

class Reader {
public:
    void take(const QByteArray &bytes) {
        m_buffer += bytes;
        qsizetype start = 0;
        for (qsizetype end; (end = m_buffer.indexOf('\n', start)) >= 0; start = end + 1)
            takeLine(QByteArrayView(m_buffer).sliced(start, end - start));
        m_buffer.remove(0, start);
    }
    void print(double ms) const {
        std::printf("ms=%.1f lines=%lld bytes=%lld sum=%lld\n", ms, m_lines, m_bytes, m_sum);
    }

private:
    void takeLine(QByteArrayView line) {
        ++m_lines;
        m_bytes += line.size() + 1;
        m_sum += line.back() + line.size();
    }

    QByteArray m_buffer;
    long long m_lines = 0;
    long long m_bytes = 0;
    long long m_sum = 0;
};

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2)
        return 2;
    Reader reader;
    QProcess child;
    QElapsedTimer timer;
    timer.start();
    QObject::connect(&child, &QProcess::readyReadStandardOutput, &app,
                     [&] { reader.take(child.readAllStandardOutput()); });
    QObject::connect(&child, &QProcess::finished, &app, [&] {
        reader.take(child.readAllStandardOutput());
        reader.print(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        QCoreApplication::quit();
    });
    child.start(arguments[1], arguments.mid(2), QIODevice::ReadOnly);
    return QCoreApplication::exec();
}
