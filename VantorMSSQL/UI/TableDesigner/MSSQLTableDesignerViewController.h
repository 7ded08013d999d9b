#pragma once

#include "UI/TableDesigner/MSSQLTableDesignSession.h"
#include "UI/Workspace/KNDocumentTab.h"
#include "UI/Workspace/KNWorkspace.h"

class KNSQLEditor;
class QSplitter;
class QTabWidget;

/// The designer of one table: tabs for columns, indexes, foreign keys, triggers and details, and below them
/// the script of every change made so far. On the UI thread.
class MSSQLTableDesignerViewController : public KNDocumentTab
{
    Q_OBJECT

public:
    using Settings = MSSQLTableDesignSession::Settings;

    /// Names are not escaped. The workspace outlives the document.
    MSSQLTableDesignerViewController(const QString &schema, const QString &tableName, Settings settings,
                                     KNWorkspace &workspace);

    /// Shows the designer of a table, in front of the tabs if it is open already.
    static void open(const QString &schema, const QString &tableName, const Settings &settings,
                     KNWorkspace &workspace);

    /// Gives the open designer of a table its new name; does nothing if there is none.
    static void tableWasRenamed(const QString &schema, const QString &oldName, const QString &newName,
                                const Settings &settings, KNWorkspace &workspace);
    /// Lets the open designer of a table read it again; does nothing if there is none.
    static void tableWasChanged(const QString &schema, const QString &tableName, const Settings &settings,
                                KNWorkspace &workspace);

    QString title() const override;
    QIcon icon() const override;
    Settings databaseConnectionDetails() const override { return m_session->settings(); }
    KNDocumentStatus status() const override;
    void prepareToClose(std::function<void()> proceed) override;
    bool canPerform(KNDocumentAction action) const override;
    void perform(KNDocumentAction action) override;

    MSSQLTableDesignSession &session() const { return *m_session; }
    QTabWidget *tabs() const { return m_tabs; }
    /// The scripts of all changes, as one script with GO between them.
    QString changeScript() const;

private:
    static MSSQLTableDesignerViewController *find(const QString &schema, const QString &tableName,
                                                  const Settings &settings, KNWorkspace &workspace);
    bool shows(const QString &schema, const QString &tableName, const VantorDBC &settings) const;
    void addTab(QWidget *page, const QString &identifier, const QString &title, const char *image);
    void showChanges();
    QWidget *createChangePane();

    KNWorkspace &m_workspace;
    MSSQLTableDesignSession *const m_session;
    QTabWidget *const m_tabs;
    KNSQLEditor *const m_changes;
    QWidget *const m_changePane; ///< hidden until there is a change
};
