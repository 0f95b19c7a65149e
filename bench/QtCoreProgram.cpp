// The least that a Qt program does: the peer of `lumenpair --version`.

#include <QCoreApplication>

int main(int argc, char **argv) {
    const QCoreApplication app(argc, argv);
    return 0;
}
