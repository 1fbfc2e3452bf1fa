#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace brimvault::platform {
class SettingsText;
}

namespace brimvault::ui {

/// The file type icons of the desktop's icon theme. The theme's index files are read at the first call and cached. One
/// thread at a time; blocks on the disk. QIcon::fromTheme is no alternative: it would block the main thread.
class IconTheme {
public:
    /// The theme's name, empty for none, and the folders that hold themes.
    IconTheme(QString name, QStringList folders) : name_(std::move(name)), folders_(std::move(folders)) {}

    /// The file of the first of these icons that any theme has, in the size that fits best; empty if none has any.
    [[nodiscard]] QString fileOf(const QStringList& icons, int pixels);

private:
    // A folder of icons that serve for a range of sizes.
    struct Folder {
        QString path;
        int minSize;
        int maxSize;  ///< pixels
    };

    void readOnce();
    void readTheme(const QString& name, int depth);
    static void appendTypeFolders(const platform::SettingsText& index, const QString& theme,
                                  std::vector<Folder>& found);
    [[nodiscard]] static QString find(std::vector<Folder> folders, const QString& icon, int pixels);

    const QString name_;
    const QStringList folders_;
    bool read_ = false;
    QStringList seen_;
    std::vector<std::vector<Folder>> themes_;  ///< the desktop's theme, then those that it inherits from
};

}  // namespace brimvault::ui
