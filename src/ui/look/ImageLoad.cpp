#include "ui/look/ImageLoad.h"

#include <QCoreApplication>
#include <QHash>
#include <QPaintDevice>
#include <QPainter>
#include <QPixmapCache>
#include <array>

#include "ui/look/Look.h"

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

// Pixmaps must be destroyed before the application object.
void forgetPictures() { loadedPictures().clear(); }

struct Span {
    int start;
    int length;
};

// Three spans of a length: the kept start, the stretched middle, the kept end.
std::array<Span, 3> spans(int length, int kept) {
    return {{{0, kept}, {kept, length - 2 * kept}, {length - kept, kept}}};
}

// In whole device pixels: fractions would leave seams between the parts.
QPixmap stretched(const QPixmap& picture, const QSize& size, qreal density) {
    const auto sourceKept = qRound(corner * picture.devicePixelRatio());
    const auto targetKept = qRound(corner * density);
    const auto sourceX = spans(picture.width(), sourceKept);
    const auto sourceY = spans(picture.height(), sourceKept);
    const auto targetX = spans(size.width(), targetKept);
    const auto targetY = spans(size.height(), targetKept);
    QPixmap result(size);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (std::size_t x = 0; x < sourceX.size(); ++x) {
        for (std::size_t y = 0; y < sourceY.size(); ++y) {
            painter.drawPixmap(QRect(targetX[x].start, targetY[y].start, targetX[x].length, targetY[y].length), picture,
                               QRect(sourceX[x].start, sourceY[y].start, sourceX[x].length, sourceY[y].length));
        }
    }
    return result;
}

}  // namespace

QPixmap ImageLoad::LoadPNGImage(QLatin1String name, qreal density) {
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

QSizeF ImageLoad::sizeOf(QLatin1String name) {
    return LoadPNGImage(name, 1.0).deviceIndependentSize() * look::textScale();
}

void ImageLoad::draw(QPainter& painter, const QPointF& topLeft, QLatin1String name) {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QPixmap picture = LoadPNGImage(name, painter.device()->devicePixelRatioF() * look::textScale());
    if (look::textScale() == 1.0) {
        painter.drawPixmap(topLeft, picture);
    } else {
        painter.drawPixmap(QRectF(topLeft, sizeOf(name)), picture, QRectF(picture.rect()));
    }
}

void ImageLoad::drawStretched(QPainter& painter, const QRectF& target, QLatin1String name) {
    const qreal density = painter.device()->devicePixelRatioF();
    const QSize size = (target.size() * density).toSize();
    const QString key = QStringLiteral("%1 %2x%3 %4").arg(name).arg(size.width()).arg(size.height()).arg(density);
    QPixmap picture;
    if (!QPixmapCache::find(key, &picture)) {
        picture = stretched(LoadPNGImage(name, density), size, density);
        picture.setDevicePixelRatio(density);
        QPixmapCache::insert(key, picture);
    }
    painter.drawPixmap(target.topLeft(), picture);
}

void ImageLoad::drawFilled(QPainter& painter, const QRect& target, QLatin1String name) {
    painter.drawPixmap(target, LoadPNGImage(name, painter.device()->devicePixelRatioF()));
}

}  // namespace brimvault::ui
