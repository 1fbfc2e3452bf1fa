#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace brimvault::platform {
class SettingsText;
}

namespace brimvault::ui {

/// The icons of one kind in the desktop's icon theme. The theme's index files are read at the first call and cached.
/// One thread at a time; blocks on the disk. QIcon::fromTheme is no alternative: it would block the main thread.
class IconTheme {
public:
    enum class Kind { fileTypes, applications };

    /// The theme's name, empty for none, and the folders that hold themes; a theme may lie in several of them.
    IconTheme(QString name, QStringList folders, Kind kind = Kind::fileTypes)
        : name_(std::move(name)), folders_(std::move(folders)), kind_(kind) {}

    /// The file of the first of these icons that any theme has, in the size that fits best; empty if none has any.
    [[nodiscard]] QString fileOf(const QStringList& icons, int pixels);

private:
    // A folder of icons that serve for a range of sizes.
    struct Folder {
        QString path;  ///< in its theme, or the whole
        int minSize;
        int maxSize;  ///< pixels
    };

    void readOnce();
    void readTheme(const QString& name, int depth);
    void appendFolders(const platform::SettingsText& index, std::vector<Folder>& named) const;
    [[nodiscard]] static QString find(std::vector<Folder> folders, const QString& icon, int pixels);

    const QString name_;
    const QStringList folders_;
    const Kind kind_;
    bool read_ = false;
    QStringList seen_;
    std::vector<std::vector<Folder>> themes_;  ///< the desktop's theme, then those that it inherits from
};

}  // namespace brimvault::ui
