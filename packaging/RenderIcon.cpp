// lumenpair-render-icon ICON.svg SIZE ICON.png: one size of the icon, made while building so that no picture that a
// drawing already says is kept in the tree.

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char **argv) {
    const int size = argc == 4 ? std::atoi(argv[2]) : 0;
    if (size <= 0) {
        std::fputs("lumenpair-render-icon ICON.svg SIZE ICON.png\n", stderr);
        return 2;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    QImage icon(size, size, QImage::Format_ARGB32);
    icon.fill(Qt::transparent);
    {
        QPainter painter(&icon);
        painter.setRenderHint(QPainter::Antialiasing);
        drawing.render(&painter);
    }
    if (!drawing.isValid() || !icon.save(QString::fromLocal8Bit(argv[3]), "PNG")) {
        std::fprintf(stderr, "cannot turn %s into %s\n", argv[1], argv[3]);
        return 1;
    }
    return 0;
}
