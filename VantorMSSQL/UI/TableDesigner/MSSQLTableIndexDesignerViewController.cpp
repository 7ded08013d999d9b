#include "UI/TableDesigner/MSSQLTableIndexDesignerViewController.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Scripts/MSSQLScriptDropIndexQueryLoader.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/TableDesigner/MSSQLEditIndexWindowController.h"

namespace {

bool isPrimary(const MSSQLIndexEntry &index)
{
    return index.indexName.compare(QLatin1String("PRIMARY"), Qt::CaseInsensitive) == 0;
}

} // namespace

MSSQLTableIndexDesignerViewController::MSSQLTableIndexDesignerViewController(MSSQLTableDesignSession &session,
                                                                             QWidget *parent)
    : MSSQLDesignerListView(session, tr("Indexes"), {tr("Name"), tr("Fields"), tr("Type"), tr("Unique")},
                            parent)
{
    addButton(tr("&New Index…"), false, [this] { addNewIndex(); });
    addButton(tr("&Edit Index…"), true, [this] { indexTableViewDoubleClicked(); });
    addButton(tr("&Drop Index…"), true, [this] { handleDeleteIndex(); });
    connect(list(), &QTreeWidget::itemActivated, this,
            &MSSQLTableIndexDesignerViewController::indexTableViewDoubleClicked);
    loadIndexes();
}

QString MSSQLTableIndexDesignerViewController::cellText(const MSSQLIndexEntry &index,
                                                        const QString &identifier)
{
    if (identifier == QLatin1String("Name"))
        return index.indexName;
    if (identifier == QLatin1String("Type"))
        return index.isNonClustered ? QStringLiteral("Non-Clustered") : QStringLiteral("Clustered");
    if (identifier == QLatin1String("Unique"))
        return index.isUnique ? tr("yes") : tr("no");
    if (identifier == QLatin1String("Fields")) {
        QStringList names;
        for (const MSSQLIndexColumnEntry &column : index.columns)
            names.append(column.name);
        return names.join(QStringLiteral(", "));
    }
    KNLogHelper::sharedInstance()->logMessage("Unknown identifier: %@", identifier);
    return {};
}

void MSSQLTableIndexDesignerViewController::loadIndexes()
{
    KNLogHelper::sharedInstance()->logMessage("Want to load indexes");
    loadRecords<MSSQLIndexEntry>("mssql.tabledesigner.loadIndexes", [this](
                                                                        const QList<MSSQLIndexEntry> &indexes,
                                                                        const KNError &error) {
        m_indexes = indexes;
        QList<QStringList> rows;
        for (const MSSQLIndexEntry &index : indexes)
            rows.append({cellText(index, QStringLiteral("Name")), cellText(index, QStringLiteral("Fields")),
                         cellText(index, QStringLiteral("Type")), cellText(index, QStringLiteral("Unique"))});
        showRows(rows, error, tr("The table has no indexes."));
        KNLogHelper::sharedInstance()->logMessage("Loaded %ld indexes for table %@",
                                                  static_cast<long>(indexes.size()), session().table().name);
    });
}

void MSSQLTableIndexDesignerViewController::handleDeleteIndex()
{
    const int row = currentRow();
    if (row < 0 || row >= m_indexes.size())
        return;
    const MSSQLIndexEntry index = m_indexes[row];
    if (isPrimary(index))
        return KNAlerts::shared().showMessage(
            session().window(), tr("Unable to remove PRIMARY index"),
            tr("To remove the PRIMARY index, instead you must disable the primary key column."));
    const MSSQLDesignedTable table = session().table();
    const MSSQLScriptSubject subject{QStringLiteral("INDEX"), table.schema, index.indexName,
                                     session().settings(), table.name};
    const auto loader =
        subject.script<MSSQLScriptDropIndexQueryLoader>(index.indexName, table.name, table.schema);
    const KNQueryPreview::Titles titles{
        KNFormat(tr("Do you really want to drop the index '%@'?"), index.indexName),
        tr("Once an index has been removed, it cannot be recovered."), tr("Drop"),
        KNFormat(tr("Dropping index '%@'"), index.indexName), true};
    session().preview(session().window(), titles, loader, QStringLiteral("MSSQLAlterIndex"));
}

void MSSQLTableIndexDesignerViewController::indexTableViewDoubleClicked()
{
    const int row = currentRow();
    if (row < 0 || row >= m_indexes.size())
        return;
    if (isPrimary(m_indexes[row]))
        return KNAlerts::shared().showMessage(session().window(), tr("Unable to modify PRIMARY index"),
                                              tr("The PRIMARY index cannot be modified."));
    edit(m_indexes[row], false);
}

void MSSQLTableIndexDesignerViewController::addNewIndex()
{
    MSSQLIndexEntry index;
    index.isNonClustered = true;
    edit(index, true);
}

void MSSQLTableIndexDesignerViewController::edit(const MSSQLIndexEntry &index, bool isNewIndex)
{
    auto *const editor = new MSSQLEditIndexWindowController(session(), index, isNewIndex);
    editor->beginSheet({});
}
