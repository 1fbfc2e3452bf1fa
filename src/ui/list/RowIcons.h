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

/// The icons that applications and types of files have for themselves, for the rows of a list that are on show. Files
/// are read and pictures decoded on one thread of its own, what was asked for last before the rest; what has gone off
/// the view meanwhile is given up. Main thread.
class RowIcons final : public QObject {
    Q_OBJECT

public:
    /// Finds an icon and makes it fit into a square of that many pixels; null for none. Called on the icons' thread.
    using Load = std::function<QImage(const RowPicture& picture, int pixels)>;
    /// That which reads what is installed. Main thread.
    [[nodiscard]] static Load installed();

    static constexpr int side = 20;  ///< points
    static constexpr int mostKept = 2000;

    /// The view shows an ItemListModel by the time of the first question.
    RowIcons(QTableView* view, Load load);

    /// At a screen's density (pixels to the point); null where there is none, and until it is there: it is asked for,
    /// and the rows that show it are drawn anew when it comes.
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
    /// Calls for the rows on show and so many pages above and below.
    void forEachRowNear(int pages, const std::function<void(int row, const RowPicture&)>& call) const;

    QTableView* view_;
    Load load_;
    QCache<Wanted, QPixmap> known_{mostKept};  ///< null pictures too: of what has none
    QList<Wanted> wanted_;                     ///< the latest last
    Wanted current_;                           ///< what is being loaded
    QFutureWatcher<QImage> loading_;
    bool busy_ = false;  ///< until what has been loaded is taken in
    AbandonablePool thread_;
};

}  // namespace brimvault::ui
