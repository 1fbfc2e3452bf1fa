#pragma once

#include <QCache>
#include <QFutureWatcher>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPixmap>
#include <functional>

#include "ui/services/AbandonablePool.h"
#include "ui/table/RowPicture.h"

class QTableView;

namespace brimvault::ui {

/// A cache of the icons of applications and file types for the visible rows of a list. One thread of its own reads and
/// decodes them, the latest request first; requests for rows that have been scrolled away are dropped. Main thread.
class RowIcons final : public QObject {
    Q_OBJECT

public:
    /// Finds an icon and scales it into a square of that many pixels; null for none. Called on the icons' thread.
    using Load = std::function<QImage(const RowPicture& picture, int pixels)>;
    /// Loads the icons that are installed on this computer. Main thread.
    [[nodiscard]] static Load installed();

    static constexpr int side = 20;  ///< points
    static constexpr int maxKept = 2000;

    /// The view has an ItemListModel before the first icon is asked for.
    RowIcons(QTableView* view, Load load);

    /// The icon at a screen's density (pixels per point); null if there is none or it is not loaded yet. In that case
    /// it is requested, and the rows that show it are repainted when it arrives.
    [[nodiscard]] QPixmap of(const RowPicture& picture, qreal density);

private:
    struct Wanted {
        RowPicture picture;
        qreal density;
        bool operator==(const Wanted&) const = default;
    };
    friend std::size_t qHash(const Wanted& wanted, std::size_t seed) {
        return qHashMulti(seed, wanted.picture, wanted.density);
    }

    void loadNext();
    void take();
    void forgetWhenEmpty();
    /// Calls for each visible row, and for the rows of so many pages above and below.
    void forEachRowNear(int pages, const std::function<void(int row, const RowPicture&)>& call) const;

    QTableView* view_;
    Load load_;
    QCache<Wanted, QPixmap> known_{maxKept};  ///< null pixmaps too, for pictures without an icon
    QList<Wanted> wanted_;                    ///< a stack: the latest request is last
    Wanted current_;                          ///< the request that is being loaded
    QFutureWatcher<QImage> loading_;
    bool busy_ = false;  ///< until the loaded icon is in the cache
    AbandonablePool thread_;
};

}  // namespace brimvault::ui
