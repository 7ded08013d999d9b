#include "UI/DatabaseTree/KNPropertiesDialog.h"

#include "Foundation/KNFormat.h"

#include <QBoxLayout>
#include <QDialogButtonBox>

namespace {

constexpr QSize InitialSize(460, 460);

} // namespace

KNPropertiesDialog::KNPropertiesDialog(const QString &name, KNObjectPropertiesLoader loader, QWidget *parent)
    : QDialog(parent)
    , m_view(new KNPropertiesView(std::move(loader)))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(KNFormat(tr("Properties of %@"), name));
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_view, 1);
    layout->addWidget(buttons);
    resize(InitialSize);
}
