#pragma once

#include <QDialog>
#include <QLabel>
#include <filesystem>
#include <stop_token>

#include "engine/model/FileFacts.h"

class QFormLayout;
class QLayout;

namespace brimvault::ui {

/// What is known of one file: where it is, what it is, its size and dates, whose it is. For desktops whose file browser
/// shows none of that. Main thread; goes when it is closed.
class InfoWindow final : public QDialog {
    Q_OBJECT

public:
    InfoWindow(const std::filesystem::path& path, const engine::FileFacts& facts, QWidget* parent);
    ~InfoWindow() override;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    /// Bytes; until it is told, the window says that they are being counted.
    void setSize(quint64 bytes);
    /// Stops what still counts for this window once it is closed.
    [[nodiscard]] std::stop_token closed() const { return closed_.get_token(); }

private:
    [[nodiscard]] QLayout* makeTitle(const engine::FileFacts& facts) const;
    void addFacts(const engine::FileFacts& facts);
    QLabel* addRow(const QString& name, const QString& value);
    void addDate(const QString& name, const QDateTime& date);

    const std::filesystem::path path_;
    QFormLayout* rows_;
    QLabel* size_ = nullptr;
    std::stop_source closed_;
};

}  // namespace brimvault::ui
