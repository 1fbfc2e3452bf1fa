#include "engine/FileFacts.h"

#include <QMimeDatabase>
#include <chrono>
#include <system_error>

#include "platform/Accounts.h"
#include "platform/DisplayText.h"

namespace brimvault::engine {

namespace {

QDateTime dateOf(std::chrono::system_clock::time_point time) {
    return QDateTime::fromMSecsSinceEpoch(
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count());
}

QString typeOf(const std::filesystem::path& path, files::NodeKind kind, const QString& name) {
    if (kind == files::NodeKind::link) {
        std::error_code unread;
        return platform::displayText(std::filesystem::read_symlink(path, unread));
    }
    if (kind != files::NodeKind::regular) {
        return {};
    }
    return QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension).comment();
}

}  // namespace

std::optional<FileFacts> FileFacts::of(const std::filesystem::path& path) {
    const auto status = files::statusOf(path);
    if (!status) {
        return std::nullopt;
    }
    FileFacts facts;
    facts.kind = status->kind;
    facts.name = platform::displayText(path.filename());
    facts.folder = platform::displayText(path.parent_path());
    facts.type = typeOf(path, status->kind, facts.name);
    facts.modified = dateOf(status->modified);
    facts.accessed = dateOf(status->accessed);
    if (status->created) {
        facts.created = dateOf(*status->created);
    }
    facts.owner = platform::userNameOf(status->owner);
    facts.group = platform::groupNameOf(status->group);
    facts.permissions = status->permissions;
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
    // The special bits stand on the places of the right to run: for the owner, the group and all others.
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
