// Renders the application icon from its SVG to square PNG files for the icon theme, at
// build time:  tk_render_icon <icon.svg> <output folder> <size>...
// Each size lands in <output folder>/<size>x<size>/apps/<name>.png, the theme's layout.
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fputs("usage: tk_render_icon <icon.svg> <output folder> <size>...\n", stderr);
        return 1;
    }
    QSvgRenderer svg(QString::fromLocal8Bit(argv[1]));
    if (!svg.isValid()) {
        std::fprintf(stderr, "tk_render_icon: can't read %s\n", argv[1]);
        return 1;
    }
    const QString name = QStringLiteral("com.tekamo.ChronoletPlus");
    for (int i = 3; i < argc; ++i) {
        const int size = QString::fromLatin1(argv[i]).toInt();
        if (size <= 0) {
            std::fprintf(stderr, "tk_render_icon: not a size: %s\n", argv[i]);
            return 1;
        }
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        {
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            svg.render(&painter);
        }
        const QString folder =
            QStringLiteral("%1/%2x%2/apps").arg(QString::fromLocal8Bit(argv[2])).arg(size);
        const QString file = folder + QLatin1Char('/') + name + QStringLiteral(".png");
        if (!QDir().mkpath(folder) || !image.save(file, "PNG")) {
            std::fprintf(stderr, "tk_render_icon: can't write %s\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
