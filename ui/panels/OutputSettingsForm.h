#pragma once

#include <QString>
#include <QWidget>

#include <memory>

class QButtonGroup;

namespace velmora {

namespace Ui {
class OutputSettingsForm;
}

/// The widgets that both output settings panels share, of the interface description
/// "OutputSettingsForm". What they mean is the business of the panel's controller. Main thread.
class OutputSettingsForm : public QWidget {
public:
    explicit OutputSettingsForm(QWidget* parent = nullptr);
    ~OutputSettingsForm() override;
    OutputSettingsForm(const OutputSettingsForm&) = delete;
    OutputSettingsForm& operator=(const OutputSettingsForm&) = delete;

    /// The widgets, by their names.
    const Ui::OutputSettingsForm& outlets() const { return *outlets_; }
    /// The rows of mRadioGroup: 0 copies directly, 1 re-encodes.
    int selectedRow() const;
    QButtonGroup& rows() const;

    /// Shows where the output will go, shortened in its middle where that has to be.
    void showResultPath(const QString& path);
    /// The same, in italics, with what is still to do before there is a path.
    void showNoResultPath(const QString& hint);

    // The two rows are told apart by a title and one sentence under it, which the interface
    // descriptions of the panels give.
    void setDirectTitle(const QString& title);
    void setDirectHint(const QString& hint);
    /// Says this, too; empty: nothing more.
    void addToDirectHint(const QString& sentence);
    void setReencodeTitle(const QString& title);
    void setReencodeHint(const QString& hint);

    // The box "Exact".
    bool isExact() const;
    void setExact(bool exact);
    /// Whether it can be chosen, and what is said under it.
    void showExact(bool enabled, const QString& hint);

private:
    std::unique_ptr<Ui::OutputSettingsForm> outlets_;
    QString directHint_;
};

} // namespace velmora
