#include "ui/ImageLoad.h"

#include <QCoreApplication>
#include <QHash>
#include <QPaintDevice>
#include <QPainter>
#include <array>

namespace brimvault::ui {

namespace {

constexpr qreal corner = 14;  // points at each edge of a stretched picture that keep their size

QPixmap load(QLatin1String name, int scale) {
    const QString suffix = scale == 1 ? QString() : QStringLiteral("@2x");
    QPixmap picture(QStringLiteral(":/pictures/%1%2.png").arg(name, suffix));
    picture.setDevicePixelRatio(scale);
    return picture;
}

QHash<QString, QPixmap>& loadedPictures() {
    static QHash<QString, QPixmap> pictures;
    return pictures;
}

// Pictures must be gone before the application object is.
void forgetPictures() { loadedPictures().clear(); }

struct Span {
    qreal start;
    qreal length;
};

// Three spans of a length: the kept start, the stretched middle, the kept end.
std::array<Span, 3> spans(qreal start, qreal length, qreal kept) {
    return {{{start, kept}, {start + kept, length - 2 * kept}, {start + length - kept, kept}}};
}

}  // namespace

const QPixmap& ImageLoad::LoadPNGImage(QLatin1String name, qreal density) {
    auto& loaded = loadedPictures();
    if (loaded.isEmpty()) {
        qAddPostRoutine(forgetPictures);
    }
    const int scale = density > 1.0 ? 2 : 1;
    const QString key = QString(name) + QChar(u'0' + scale);
    auto found = loaded.find(key);
    if (found == loaded.end()) {
        found = loaded.insert(key, load(name, scale));
    }
    return *found;
}

QSizeF ImageLoad::sizeOf(QLatin1String name) { return LoadPNGImage(name, 1.0).deviceIndependentSize(); }

void ImageLoad::draw(QPainter& painter, const QPointF& topLeft, QLatin1String name) {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(topLeft, LoadPNGImage(name, painter.device()->devicePixelRatioF()));
}

void ImageLoad::drawStretched(QPainter& painter, const QRectF& target, QLatin1String name) {
    const QPixmap& picture = LoadPNGImage(name, painter.device()->devicePixelRatioF());
    const QSizeF size = picture.size();  // device pixels, as the source of a drawing is counted
    const qreal kept = corner * picture.devicePixelRatio();
    const auto sourceX = spans(0, size.width(), kept);
    const auto sourceY = spans(0, size.height(), kept);
    const auto targetX = spans(target.left(), target.width(), corner);
    const auto targetY = spans(target.top(), target.height(), corner);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (std::size_t x = 0; x < sourceX.size(); ++x) {
        for (std::size_t y = 0; y < sourceY.size(); ++y) {
            painter.drawPixmap(QRectF(targetX[x].start, targetY[y].start, targetX[x].length, targetY[y].length),
                               picture,
                               QRectF(sourceX[x].start, sourceY[y].start, sourceX[x].length, sourceY[y].length));
        }
    }
}

}  // namespace brimvault::ui
