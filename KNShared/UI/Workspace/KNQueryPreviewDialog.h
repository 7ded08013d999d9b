#pragma once

#include "Database/KNQueryDetails.h"
#include "Database/VantorDBC.h"
#include "UI/KNSharedUIExport.h"

#include <QDialog>
#include <QStringList>

class KNCautionBar;
class KNSQLEditor;
class QLabel;
class QProgressBar;
class QPushButton;

/// The widgets of a query preview. Only its owner closes it.
class KNSHAREDUI_EXPORT KNQueryPreviewDialog : public QDialog
{
    Q_OBJECT

public:
    explicit KNQueryPreviewDialog(QWidget *parent);

    void setDialect(const VantorDBC &details);
    void setTitles(const QString &title, const QString &information, const QString &acceptTitle);
    /// Makes Cancel the default button, because the statements remove something.
    void setRemoves(bool removes);
    void setEditable(bool editable);
    /// Shows the statements, which can be accepted unless they are incomplete.
    void showStatements(const QString &text, bool isIncomplete);
    QString statements() const;
    /// Shows sentences about the statements, and a button that replaces them if there is a corrected text. It
    /// is the default button unless the statements remove something.
    void showCaution(const QStringList &sentences, const QString &correctedText);
    void showRunning(bool isRunning, const QString &progressTitle);
    void showProgress(int done, int total);
    /// Shows why the statements failed, and marks the failing line (from 1), or the range if the line is 0.
    void showFailure(const QString &text, const KNRange &range, quint64 line);

    /// Requests to cancel.
    void reject() override;

Q_SIGNALS:
    void acceptRequested();
    void cancelRequested();

private:
    void arrange();
    void replaceText(const QString &text);
    void fitHeight();
    void useCorrectedText();
    void updateButtons();
    void suggestButton();

    QLabel *const m_title;
    QLabel *const m_information;
    KNCautionBar *const m_caution;
    KNSQLEditor *const m_editor;
    QLabel *const m_failure;
    QLabel *const m_progressTitle;
    QProgressBar *const m_progress;
    QPushButton *const m_cancel;
    QPushButton *const m_accept;
    QStringList m_notices; ///< of the caution, also for a corrected text
    QString m_correctedText;
    bool m_removes = false;
    bool m_isEditable = false;
    bool m_isAcceptable = false; ///< the statements are loaded and complete
    bool m_isRunning = false;
};
