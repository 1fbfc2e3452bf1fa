#pragma once

#include <QDialog>
#include <QLabel>
#include <filesystem>
#include <stop_token>

#include "engine/model/FileFacts.h"

class QFormLayout;
class QLayout;

namespace brimvault::ui {

/// Information about one file: its place, kind, size, dates and owner. For desktops whose file browser has no such
/// window. Main thread; deletes itself when it is closed.
class InfoWindow final : public QDialog {
    Q_OBJECT

public:
    /// The note is empty for none.
    InfoWindow(const std::filesystem::path& path, const engine::FileFacts& facts, const QString& note, QWidget* parent);
    ~InfoWindow() override;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    /// Bytes. Until it is set, the window says that the size is being calculated.
    void setSize(quint64 bytes);
    /// Stop is requested when the window is closed, for what still counts its size.
    [[nodiscard]] std::stop_token closed() const { return closed_.get_token(); }

private:
    [[nodiscard]] QLayout* makeTitle(const engine::FileFacts& facts) const;
    void addFacts(const engine::FileFacts& facts);
    void addTrashed(const platform::TrashRecord& record);
    QLabel* addRow(const QString& name, const QString& value);
    void addDate(const QString& name, const QDateTime& date);

    const std::filesystem::path path_;
    QFormLayout* rows_;
    QLabel* size_ = nullptr;
    std::stop_source closed_;
};

}  // namespace brimvault::ui
