#pragma once

#include "Catalog/MSSQLCatalogReader.h"
#include "Foundation/KNDispatch.h"
#include "UI/TableDesigner/MSSQLTableDesignSession.h"

#include <QPointer>
#include <QTreeWidget>
#include <QWidget>

class QHBoxLayout;
class QLabel;
class QPushButton;

/// A tab of the table designer that lists records of the table and has buttons for them. Buttons are disabled
/// while a statement runs. On the UI thread.
class MSSQLDesignerListView : public QWidget
{
    Q_OBJECT

public:
    QTreeWidget *list() const { return m_list; }
    bool isLoading() const { return m_isLoading; }

protected:
    /// The session outlives this object. `name` is for screen readers.
    MSSQLDesignerListView(MSSQLTableDesignSession &session, const QString &name, const QStringList &headers,
                          QWidget *parent);

    MSSQLTableDesignSession &session() const { return m_session; }
    /// Adds a button; one for a selected row is disabled while none is selected.
    QPushButton *addButton(const QString &title, bool needsRow, const std::function<void()> &clicked);
    /// The position of the selected row; -1 if none.
    int currentRow() const;
    /// Replaces the rows, and shows the error or what an empty list means below them.
    void showRows(const QList<QStringList> &rows, const KNError &error, const QString &emptyText);

    /// Loads the records on a background thread; called at the start and after each change of the table.
    virtual void load() = 0;

    /// Implements load(): reads the records of the table and passes them to `show` on the UI thread.
    template <typename Record, typename Show>
    void loadRecords(const MSSQLCatalogReader::ErrorContext &context, Show show)
    {
        m_isOutdated = m_isLoading;
        if (m_isLoading)
            return;
        m_isLoading = true;
        KNDispatch::globalQueue([self = QPointer(this), context, show, table = m_session.table(),
                                 settings = m_session.settings()] {
            KNError error;
            const auto records =
                MSSQLCatalogReader::records<Record>(*settings, table.schema, table.name, context, &error);
            if (!error && records.isEmpty())
                error = errorWithoutTable(table, *settings, context.domain);
            KNDispatch::mainQueue([self, records, error, show] {
                if (!self)
                    return;
                self->m_isLoading = false;
                if (self->m_isOutdated)
                    self->load();
                else
                    show(records, error);
            });
        });
    }

private:
    void updateButtons();
    /// The error that the table is not there, or hidden from the login; none if it can be seen. Blocks on the
    /// server.
    static KNError errorWithoutTable(const MSSQLDesignedTable &table, const VantorDBC &settings,
                                     const char *errorDomain);

    MSSQLTableDesignSession &m_session;
    QTreeWidget *const m_list;
    QLabel *const m_notice;
    QHBoxLayout *const m_buttons;
    QList<QPushButton *> m_always;  ///< enabled unless a statement runs
    QList<QPushButton *> m_needRow; ///< also need a selected row
    bool m_isLoading = false;
    bool m_isOutdated = false; ///< the table has changed since the load began
};
