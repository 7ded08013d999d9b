#include "UI/Import/KNImportOptionsPage.h"

#include "UI/Alerts/KNFilePanels.h"
#include "UI/Dialogs/KNCautionBar.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>

using EmptyValues = KNImportValueFormat::Empty;

KNImportOptionsPage::KNImportOptionsPage(KNImportSession &session, QWidget *parent)
    : KNImportPage(session, parent)
    , m_empty(new QComboBox)
    , m_dateFormat(new QComboBox)
    , m_decimalPoint(new QComboBox)
    , m_identity(new QCheckBox(tr("&Write the values of the identity column")))
    , m_truncate(new QCheckBox(tr("&Delete all rows of the table first")))
    , m_batchRows(new QSpinBox)
    , m_skipsFaults(new QCheckBox(tr("&Skip faulty rows, and write them into a file:")))
    , m_faultFile(new QLineEdit)
    , m_chooseFaultFile(new QPushButton(tr("&Choose…")))
    , m_caution(new KNCautionBar)
{
    m_empty->addItem(tr("As written: empty is NULL, \"\" is empty text"),
                     static_cast<int>(EmptyValues::AsWritten));
    m_empty->addItem(tr("Always NULL"), static_cast<int>(EmptyValues::Null));
    m_empty->addItem(tr("Always empty text"), static_cast<int>(EmptyValues::Text));
    m_dateFormat->setEditable(true);
    m_dateFormat->addItems({tr("ISO 8601"), QStringLiteral("d.M.yyyy"), QStringLiteral("M/d/yyyy"),
                            QStringLiteral("d/M/yyyy"), QStringLiteral("d.M.yyyy HH:mm:ss"),
                            QStringLiteral("M/d/yyyy h:mm:ss AP")});
    m_decimalPoint->addItem(tr("Point: 1,234.50"), QChar(u'.'));
    m_decimalPoint->addItem(tr("Comma: 1.234,50"), QChar(u','));
    m_batchRows->setRange(1, static_cast<int>(KNImportPlan::MostBatchRows));
    m_batchRows->setValue(static_cast<int>(KNImportPlan::DefaultBatchRows));
    arrange();
    const auto changed = [this] {
        m_faultFile->setEnabled(m_skipsFaults->isChecked());
        m_chooseFaultFile->setEnabled(m_skipsFaults->isChecked());
        m_caution->setText(m_truncate->isChecked()
                               ? tr("The rows that the table has now are deleted in the same transaction.")
                               : QString());
        Q_EMIT completeChanged();
    };
    connect(m_skipsFaults, &QCheckBox::toggled, this, changed);
    connect(m_truncate, &QCheckBox::toggled, this, changed);
    connect(m_faultFile, &QLineEdit::textChanged, this, changed);
    connect(m_chooseFaultFile, &QPushButton::clicked, this, &KNImportOptionsPage::chooseFaultFile);
    changed();
}

void KNImportOptionsPage::arrange()
{
    m_faultFile->setAccessibleName(tr("File for faulty rows"));
    m_chooseFaultFile->setAutoDefault(false);
    auto *const file = new QHBoxLayout;
    file->addWidget(m_faultFile, 1);
    file->addWidget(m_chooseFaultFile);
    auto *const form = new QFormLayout;
    form->addRow(tr("&Empty values:"), m_empty);
    form->addRow(tr("Da&tes:"), m_dateFormat);
    form->addRow(tr("Decimal se&parator:"), m_decimalPoint);
    form->addRow(tr("&Rows sent together:"), m_batchRows);
    form->addRow({}, m_identity);
    form->addRow({}, m_truncate);
    form->addRow({}, m_skipsFaults);
    form->addRow({}, file);
    auto *const note =
        new QLabel(tr("All rows are imported in one transaction: after an error, a cancel or a lost "
                      "connection the table is as it was."));
    note->setTextFormat(Qt::PlainText);
    note->setWordWrap(true);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addLayout(form);
    layout->addWidget(m_caution);
    layout->addStretch(1);
    layout->addWidget(note);
}

QString KNImportOptionsPage::title() const
{
    return tr("Options");
}

void KNImportOptionsPage::chooseFaultFile()
{
    const QFileInfo source(session().plan.file.path);
    const KNFilePanels::Request request{tr("File for faulty rows"),
                                        source.dir().filePath(source.completeBaseName() + tr("-faults.csv")),
                                        {tr("CSV files (*.csv)"), tr("All files (*)")}};
    KNFilePanels::shared().chooseFileToSave(this, request, [self = QPointer(this)](const QString &path) {
        if (self)
            self->m_faultFile->setText(path);
    });
}

bool KNImportOptionsPage::isComplete() const
{
    return !m_skipsFaults->isChecked() || !m_faultFile->text().isEmpty();
}

void KNImportOptionsPage::apply()
{
    KNImportPlan &plan = session().plan;
    plan.values.empty = static_cast<EmptyValues>(m_empty->currentData().toInt());
    const QString format = m_dateFormat->currentText().trimmed();
    plan.values.dateFormat = format == m_dateFormat->itemText(0) ? QString() : format;
    plan.values.decimalPoint = m_decimalPoint->currentData().toChar();
    plan.writesIdentity = m_identity->isChecked();
    plan.truncatesFirst = m_truncate->isChecked();
    plan.batchRows = m_batchRows->value();
    plan.faultFile = m_skipsFaults->isChecked() ? m_faultFile->text() : QString();
}
