#pragma once

#include "UI/KNSharedUIExport.h"

#include <QWidget>

class QLabel;
class QProgressBar;

/// Shows a progress indicator, a warning sign with the reason as its tool tip, or nothing. On the UI thread.
class KNSHAREDUI_EXPORT KNProgressMark : public QWidget
{
    Q_OBJECT

public:
    /// `subject` describes the work for screen readers: "Connecting".
    explicit KNProgressMark(const QString &subject, QWidget *parent = nullptr);

    void start();
    void stop();
    /// Stops the indicator and shows the warning sign.
    void fail(const QString &why);

    bool isRunning() const;
    /// The reason shown; null while there is no warning sign.
    QString problem() const;

private:
    QProgressBar *const m_progress;
    QLabel *const m_warning;
};
