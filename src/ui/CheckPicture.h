#pragma once

#include <QLatin1String>
#include <QtGlobal>

namespace brimvault::ui {

/// On what a check box is drawn.
enum class CheckGround { plain, selected };

/// The picture of a check box.
[[nodiscard]] inline QLatin1String checkPicture(Qt::CheckState state, bool pressed, CheckGround ground) {
    switch (state) {
        case Qt::PartiallyChecked:
            return QLatin1String(pressed ? "rcheck1Sel" : ground == CheckGround::selected ? "rcheck1Inv" : "rcheck1");
        case Qt::Checked:
            return QLatin1String(pressed ? "rcheck2Sel" : ground == CheckGround::selected ? "rcheck2Inv" : "rcheck2");
        case Qt::Unchecked:
            break;
    }
    return QLatin1String(pressed ? "rcheck0Sel" : ground == CheckGround::selected ? "rcheck0Inv" : "rcheck0");
}

/// Side of a check box's picture, in points.
inline constexpr int checkSize = 18;

/// How strongly a check box is drawn that cannot be changed.
inline constexpr qreal disabledCheckOpacity = 0.45;

}  // namespace brimvault::ui
