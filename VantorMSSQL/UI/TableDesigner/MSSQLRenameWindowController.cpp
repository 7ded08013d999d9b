#include "UI/TableDesigner/MSSQLRenameWindowController.h"

#include "TableDesign/MSSQLRenameScript.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int RenameDialogWidth = 420;

} // namespace

MSSQLRenameWindowController::MSSQLRenameWindowController(const QString &title, const QString &name,
                                                         QWidget *parent)
    : KNWindowController(parent)
    , m_oldName(name)
    , m_name(new QLineEdit(name))
{
    setWindowTitle(title);
    setMinimumWidth(RenameDialogWidth);
    m_name->setMaxLength(MSSQLRenameScript::LongestName);
    m_name->setAccessibleName(tr("New name"));
    m_name->selectAll();
    QDialogButtonBox *const buttons = makeButtons(tr("Rename…"));
    QPushButton *const accept = acceptButton(*buttons);
    const auto showAcceptable = [this, accept] { accept->setEnabled(!newName().isNull()); };
    connect(m_name, &QLineEdit::textChanged, this, showAcceptable);
    showAcceptable();

    auto *const layout = new QFormLayout(this);
    layout->addRow(tr("&New name:"), m_name);
    layout->addRow(buttons);
    m_name->setFocus();
}

QString MSSQLRenameWindowController::newName() const
{
    const QString name = MSSQLRenameScript::acceptedName(m_name->text());
    return name == m_oldName ? QString() : name;
}
