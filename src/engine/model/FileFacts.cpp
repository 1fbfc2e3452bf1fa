#include "engine/model/FileFacts.h"

#include <QMimeDatabase>
#include <system_error>

#include "engine/model/FileManager.h"
#include "platform/Accounts.h"
#include "platform/text/DisplayText.h"

namespace brimvault::engine {

std::optional<FileFacts> FileFacts::of(const std::filesystem::path& path) {
    const auto status = files::statusOf(path);
    if (!status) {
        return std::nullopt;
    }
    FileFacts facts;
    facts.kind = status->kind;
    facts.name = platform::displayText(path.filename());
    facts.folder = platform::displayText(path.parent_path());
    if (status->kind == files::NodeKind::regular) {
        facts.type = QMimeDatabase().mimeTypeForFile(facts.name, QMimeDatabase::MatchExtension).comment();
    } else if (status->kind == files::NodeKind::link) {
        std::error_code unread;
        facts.linkTarget = platform::displayText(std::filesystem::read_symlink(path, unread));
    }
    facts.modified = FileManager::dateOf(status->modified);
    facts.accessed = FileManager::dateOf(status->accessed);
    if (status->identity.born) {
        facts.created = FileManager::dateOf(*status->identity.born);
    }
    facts.owner = platform::userNameOf(status->owner);
    facts.group = platform::groupNameOf(status->group);
    facts.permissions = status->permissions;
    facts.trashed = platform::TrashRecords().ofItem(path);
    return facts;
}

QString FileFacts::permissionText() const {
    QString text = QStringLiteral("rwxrwxrwx");
    const auto isSet = [this](int bit) { return (permissions >> static_cast<unsigned>(bit) & 1U) != 0; };
    const int letters = static_cast<int>(text.size());
    for (int place = 0; place < letters; ++place) {
        if (!isSet(letters - 1 - place)) {
            text[place] = QLatin1Char('-');
        }
    }
    // setuid, setgid and sticky are shown in the place of x: the owner's, the group's and everybody's.
    const QLatin1String special("sst");
    for (int who = 0; who < special.size(); ++who) {
        if (isSet(letters + 2 - who)) {
            QChar& place = text[3 * who + 2];
            place = place == QLatin1Char('x') ? QChar(special[who]) : QChar(special[who]).toUpper();
        }
    }
    return text;
}

}  // namespace brimvault::engine
