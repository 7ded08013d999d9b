#pragma once

#include "Activity/KNServerActivity.h"
#include "UI/Workspace/KNDocumentTab.h"

#include <QTimer>

#include <memory>
#include <optional>

class KNActivityView;
class KNCautionBar;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

/// A document tab that shows the sessions of a server, with the blocked ones below those that block them.
/// Reads them again every few seconds while it is visible, one reading at a time. On the UI thread.
class KNSHAREDUI_EXPORT KNActivityTab : public KNDocumentTab
{
    Q_OBJECT

public:
    using Settings = std::shared_ptr<const VantorDBC>;

    KNActivityTab(Settings details, std::shared_ptr<const KNServerActivity> activity,
                  QWidget *parent = nullptr);

    QString title() const override;
    Settings databaseConnectionDetails() const override { return m_details; }

    KNActivityView *view() const { return m_view; }
    QComboBox *interval() const { return m_interval; }
    QPushButton *killButton() const { return m_kill; }
    /// The statement of the selected session.
    QString statement() const;
    /// A caution about missing sessions, or why the last reading failed.
    QString remark() const;
    bool isReading() const { return m_isReading; }

public Q_SLOTS:
    /// Reads the sessions, unless they are being read.
    void refresh();
    /// Ends the selected session after a question.
    void killSession();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void arrange();
    void showSnapshot(const KNActivitySnapshot &snapshot, const KNError &error);
    void showSelection();
    void kill(const KNActivitySession &session);
    void schedule();

    const Settings m_details;
    const std::shared_ptr<const KNServerActivity> m_activity;
    KNActivityView *const m_view;
    QPlainTextEdit *const m_statement;
    QComboBox *const m_interval;
    QPushButton *const m_kill;
    KNCautionBar *const m_remark;
    QLabel *const m_summary;
    QTimer m_timer;
    bool m_isReading = false;
};
