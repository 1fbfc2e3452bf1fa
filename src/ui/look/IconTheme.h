#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace brimvault::platform {
class SettingsText;
}

namespace brimvault::ui {

/// The desktop's icons of the types of files. Its lists are read when it is first asked, then kept. One thread at a
/// time; blocks as long as the disk does, which Qt's own would do on the main thread.
class IconTheme {
public:
    /// The theme's name, empty for none, and the folders in which themes lie.
    IconTheme(QString name, QStringList folders) : name_(std::move(name)), folders_(std::move(folders)) {}

    /// The file of the first of the icons that there is, in the size that serves best for so many pixels; empty where
    /// there is none.
    [[nodiscard]] QString fileOf(const QStringList& icons, int pixels);

private:
    // A folder of icons of one size, which may stand for a range of sizes.
    struct Folder {
        QString path;
        int smallest;
        int largest;  ///< pixels
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
    std::vector<std::vector<Folder>> themes_;  ///< the desktop's own, then those that it builds upon
};

}  // namespace brimvault::ui
