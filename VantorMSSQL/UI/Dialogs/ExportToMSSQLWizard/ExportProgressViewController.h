#pragma once

#include <QWidget>

#include <atomic>
#include <memory>

class QLabel;
class QProgressBar;
class QPushButton;

/// The progress of an export, with a Cancel button. On the UI thread.
class ExportProgressViewController : public QWidget
{
    Q_OBJECT

public:
    /// Set by the Cancel button. Any thread.
    using Cancelled = std::shared_ptr<std::atomic<bool>>;

    explicit ExportProgressViewController(QWidget *parent = nullptr);

    const Cancelled &cancelled() const { return m_cancelled; }
    void setLabelString(const QString &label);
    QString labelString() const;
    void setPercentage(int percentage);
    QPushButton *cancelButton() const { return m_cancel; }

public Q_SLOTS:
    void cancel();

private:
    const Cancelled m_cancelled = std::make_shared<std::atomic<bool>>(false);
    QLabel *const m_label;
    QProgressBar *const m_bar;
    QPushButton *const m_cancel;
};
