#pragma once

#include <QByteArray>
#include <QIODevice>

namespace lmp {

/// A request body that can be read once.
///
/// Qt sends a request again on its own when a connection dies before the answer, and asks the body to rewind for
/// that; a body that refuses makes the request fail instead. One of which nothing was read agrees: nobody can have
/// acted on a request without its body, and Qt does put one on a connection that is just being closed. It must outlive
/// the reply that reads it.
class OneShotBody : public QIODevice {
    Q_OBJECT
public:
    explicit OneShotBody(QByteArray bytes, QObject *parent = nullptr);

    bool isSequential() const override { return true; }
    bool reset() override { return m_position == 0 && !m_bytes.isEmpty(); }
    bool atEnd() const override { return m_position == m_bytes.size(); }
    qint64 bytesAvailable() const override { return m_bytes.size() - m_position + QIODevice::bytesAvailable(); }

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    qsizetype m_position = 0;
};

} // namespace lmp
