#pragma once

#include "UI/KNSharedUIExport.h"

#include <QWidget>

class QLabel;
class QProgressBar;

/// Shows that something goes on, or a warning sign whose tool tip says why it failed, or nothing. On the UI
/// thread.
class KNSHAREDUI_EXPORT KNProgressMark : public QWidget
{
    Q_OBJECT

public:
    /// `subject` says what of, to who cannot see it: "Connecting".
    explicit KNProgressMark(const QString &subject, QWidget *parent = nullptr);

    void start();
    void stop();
    /// Stops, and shows the sign.
    void fail(const QString &why);

    bool isRunning() const;
    /// Null while no sign is shown.
    QString problem() const;

private:
    QProgressBar *const m_progress;
    QLabel *const m_warning;
};
