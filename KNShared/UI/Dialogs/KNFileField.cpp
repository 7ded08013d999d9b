#include "UI/Dialogs/KNFileField.h"

#include "UI/Alerts/KNFilePanels.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

KNFileField::KNFileField(const QString &title, const QStringList &filters, QWidget *parent)
    : QWidget(parent)
    , m_path(new QLineEdit)
{
    auto *const choose = new QPushButton(tr("Choose…"));
    choose->setAutoDefault(false);
    choose->setAccessibleName(title);
    m_path->setAccessibleName(title);
    connect(choose, &QPushButton::clicked, this, [this, title, filters] {
        const auto chosen = [field = QPointer(this)](const QStringList &paths) {
            if (field && !paths.isEmpty())
                field->setPath(paths.first());
        };
        KNFilePanels::shared().chooseFilesToOpen(window(), {title, path(), filters}, chosen);
    });
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_path, 1);
    layout->addWidget(choose);
    setFocusPolicy(Qt::StrongFocus); // for the mnemonic of its label
    setFocusProxy(m_path);
}

QString KNFileField::path() const
{
    return m_path->text().trimmed();
}

void KNFileField::setPath(const QString &path)
{
    m_path->setText(path);
}
