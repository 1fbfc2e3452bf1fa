#include "platform/text/DisplayText.h"

namespace brimvault::platform {

namespace {

bool isShown(QChar character) {
    switch (character.category()) {
        case QChar::Other_Control:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return false;
        case QChar::Other_Format: {
            const auto code = character.unicode();
            const bool changesDirection = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
            return !changesDirection;
        }
        default:
            return true;
    }
}

}  // namespace

QString displayText(const std::filesystem::path& path) {
    QString text = QString::fromUtf8(path.native().data(), static_cast<qsizetype>(path.native().size()));
    for (QChar& character : text) {
        if (!isShown(character)) {
            character = QChar::ReplacementCharacter;
        }
    }
    return text;
}

}  // namespace brimvault::platform
