#pragma once

#include "Catalog/MSSQLIndexEntry.h"
#include "UI/TableDesigner/MSSQLDesignerListView.h"

/// The indexes of a table. Changes are shown as statements before they run. On the UI thread.
class MSSQLTableIndexDesignerViewController : public MSSQLDesignerListView
{
    Q_OBJECT

public:
    /// The session outlives this object.
    explicit MSSQLTableIndexDesignerViewController(MSSQLTableDesignSession &session,
                                                   QWidget *parent = nullptr);

    /// The text of a cell; empty, after a log record, for an unknown identifier.
    static QString cellText(const MSSQLIndexEntry &index, const QString &identifier);

    void loadIndexes();
    void handleDeleteIndex();
    void indexTableViewDoubleClicked();
    void addNewIndex();

protected:
    void load() override { loadIndexes(); }

private:
    void edit(const MSSQLIndexEntry &index, bool isNewIndex);

    QList<MSSQLIndexEntry> m_indexes;
};
