#include "UI/TableDesigner/MSSQLRenameTableWindowController.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "TableDesign/MSSQLTableScript.h"
#include "UI/Alerts/KNAlerts.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>

namespace {

constexpr int InitialWidth = 420;
constexpr int ListHeight = 110;
constexpr int LongestTableName = 128; // of an object, in characters

/// Null if the list could not be read.
std::optional<QStringList> dependentsOf(const MSSQLDesignedTable &table, const VantorDBC &settings)
{
    QStringList names;
    const KNError error = MSSQLCatalogReader::read(
        settings, QStringLiteral("List_DependentsOfTable"),
        {{QStringLiteral("SCHEMA"), table.schema}, {QStringLiteral("TABLE"), table.name}},
        "mssql.tabledesigner.loadDependents", [&](const DatabaseResultSet &row) {
            names.append(KNFormat("%@.%@", row.stringForColumnIndex(0), row.stringForColumnIndex(1)));
        });
    return error ? std::nullopt : std::optional(names);
}

} // namespace

MSSQLRenameTableWindowController::MSSQLRenameTableWindowController(const MSSQLDesignedTable &table,
                                                                   std::shared_ptr<const VantorDBC> settings,
                                                                   QWidget *parent)
    : KNWindowController(parent)
    , m_name(new QLineEdit(table.name))
    , m_notice(new QLabel(tr("Looking for views and procedures that name this table…")))
    , m_dependents(new QPlainTextEdit)
{
    setWindowTitle(tr("Rename Table"));
    setMinimumWidth(InitialWidth);
    m_name->setMaxLength(LongestTableName);
    m_name->setAccessibleName(tr("New name"));
    m_name->selectAll();
    m_notice->setWordWrap(true);
    m_dependents->setReadOnly(true);
    m_dependents->setMaximumHeight(ListHeight);
    m_dependents->setAccessibleName(tr("Objects that name the table"));
    QDialogButtonBox *const buttons = makeButtons(tr("Rename"));
    disconnect(buttons, &QDialogButtonBox::accepted, nullptr, nullptr);
    connect(buttons, &QDialogButtonBox::accepted, this, &MSSQLRenameTableWindowController::onAccept);

    auto *const layout = new QFormLayout(this);
    layout->addRow(tr("&New name:"), m_name);
    layout->addRow(m_notice);
    layout->addRow(m_dependents);
    layout->setRowVisible(m_dependents, false); // without its spacing
    layout->addRow(buttons);
    m_name->setFocus();
    loadDependents(table, std::move(settings));
}

QString MSSQLRenameTableWindowController::tableName() const
{
    return MSSQLTableScript::acceptedName(m_name->text(), MSSQLTableScript::Dialog::Rename);
}

void MSSQLRenameTableWindowController::onAccept()
{
    if (!tableName().isNull())
        return endSheetWithReturnCode(1);
    m_name->setFocus();
    KNAlerts::shared().showError(this, KNError(QString(), 0, tr("The specified table name is invalid.")));
}

void MSSQLRenameTableWindowController::loadDependents(const MSSQLDesignedTable &table,
                                                      std::shared_ptr<const VantorDBC> settings)
{
    KNDispatch::globalQueue([self = QPointer(this), table, settings = std::move(settings)] {
        const auto names = dependentsOf(table, *settings);
        KNDispatch::mainQueue([self, names] {
            if (!self)
                return;
            if (names)
                self->showDependents(*names);
            else
                self->m_notice->setText(tr("The objects that name this table could not be read."));
        });
    });
}

void MSSQLRenameTableWindowController::showDependents(const QStringList &names)
{
    m_notice->setText(names.isEmpty() ? tr("No view, procedure, function or trigger names this table.")
                                      : tr("These objects name the table. They are not changed, and may fail "
                                           "afterwards:"));
    m_dependents->setPlainText(names.join(QLatin1Char('\n')));
    static_cast<QFormLayout *>(layout())->setRowVisible(m_dependents, !names.isEmpty());
    adjustSize();
}
