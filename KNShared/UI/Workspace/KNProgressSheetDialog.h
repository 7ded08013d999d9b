#pragma once

#include <QDialog>
#include <QPointer>

#include <functional>
#include <optional>

class QLabel;
class QProgressBar;
class QPushButton;

/// The widgets of a KNProgressSheet. Only its owner closes it.
class KNProgressSheetDialog : public QDialog
{
    Q_OBJECT

public:
    explicit KNProgressSheetDialog(QWidget *parent);

    void setLabel(const QString &label);
    void setPercentage(std::optional<double> percentage);
    void setCancelBlock(std::function<void()> cancel);

    /// Cancels the work.
    void reject() override;

private:
    QLabel *const m_label;
    QProgressBar *const m_bar;
    QPushButton *const m_cancel;
    std::function<void()> m_cancelBlock; ///< empty once called
};
