#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"
#include "UI/Dialogs/KNWindowController.h"

class KNConnectionAttempt;
class KNPasswordField;
class KNProgressMark;
class QLabel;
class QPushButton;

/// Logs in: asks for the password if it is not known or was wrong, and ends with 1 once the login has
/// succeeded. Cancelling stops the attempt and ends the sheet with 0.
class KNSHAREDUI_EXPORT KNLoginWindowController : public KNWindowController
{
    Q_OBJECT

public:
    /// Copies the settings. With `asksFirst` it waits for a password; otherwise it connects at once.
    KNLoginWindowController(const VantorDBC &details, bool asksFirst, QWidget *parent);
    ~KNLoginWindowController() override;

    /// The settings, with the password that was entered last.
    const VantorDBCPtr &details() const { return m_details; }
    /// Why the last attempt failed; null if none did.
    QString problem() const;

private:
    void layOut();
    void connectToServer();
    void attemptFailed(const KNError &error);
    void showAttempt(bool isRunning);

    const VantorDBCPtr m_details;
    QLabel *const m_label;
    KNPasswordField *const m_password;
    QLabel *const m_problem;
    KNProgressMark *const m_progress;
    QPushButton *m_accept = nullptr;
    KNConnectionAttempt *m_attempt = nullptr; ///< null while none runs
};
