#include "UI/Results/KNExportDialog.h"

#include "Export/ResultFormat.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNUserDefaults.h"
#include "UI/Results/KNCountText.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace {

const QString ExportFormat = QStringLiteral("ExportFormat");

QString summaryOf(const ResultRows &rows, qsizetype hiddenColumns)
{
    const QString rowText = rows.rowCount() == 1
                                ? KNExportDialog::tr("1 row")
                                : KNFormat(KNExportDialog::tr("%@ rows"), KNCountText(rows.rowCount()));
    const QString columnText = rows.columns.size() == 1 ? KNExportDialog::tr("1 column")
                                                        : KNFormat(KNExportDialog::tr("all %@ columns"),
                                                                   KNCountText(rows.columns.size()));
    if (hiddenColumns == 0)
        return KNFormat(KNExportDialog::tr("%@ and %@ are written."), rowText, columnText);
    const QString hiddenText =
        hiddenColumns == 1 ? KNExportDialog::tr("the hidden one")
                           : KNFormat(KNExportDialog::tr("the %@ hidden ones"), KNCountText(hiddenColumns));
    return KNFormat(KNExportDialog::tr("%@ and %@ are written, also %@."), rowText, columnText, hiddenText);
}

} // namespace

KNExportDialog::KNExportDialog(const ResultRows &rows, qsizetype hiddenColumns, QWidget *parent)
    : KNWindowController(parent)
    , m_summary(new QLabel(summaryOf(rows, hiddenColumns), this))
    , m_formats(new QComboBox(this))
    , m_form(new QFormLayout)
    , m_separators(new QComboBox(this))
    , m_encodings(new QComboBox(this))
    , m_byteOrderMark(new QCheckBox(tr("&Byte-order mark (for Excel)"), this))
    , m_header(new QCheckBox(tr("&Column names in the first line"), this))
    , m_quotes(new QCheckBox(tr("&Quotes around all values"), this))
    , m_nullText(new QLineEdit(this))
{
    setWindowTitle(tr("Export Rows"));
    m_summary->setTextFormat(Qt::PlainText);
    m_summary->setWordWrap(true);
    const QString used = KNUserDefaults::standardUserDefaults()->stringForKey(ExportFormat);
    for (const ResultFormat &format : ResultFormat::offeredFor(ResultFormat::File)) {
        m_formats->addItem(format.localizedTitle().remove(u'&'), format.extension);
        if (format.extension == used)
            m_formats->setCurrentIndex(m_formats->count() - 1);
    }
    m_formats->setAccessibleName(tr("Format"));
    m_form->addRow(tr("&Format:"), m_formats);
    addCsvOptions();
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addLayout(m_form);
    layout->addStretch();
    layout->addWidget(makeButtons(tr("Choose File…")));
    showCsvOptions(CsvOptions::remembered());
    const auto formatChanged = [this] {
        for (int row = 1; row < m_form->rowCount(); ++row)
            m_form->setRowVisible(row, extension() == QLatin1String("csv"));
    };
    connect(m_formats, &QComboBox::currentIndexChanged, this, formatChanged);
    formatChanged();
    m_formats->setFocus();
}

void KNExportDialog::addCsvOptions()
{
    m_separators->addItem(tr("Comma"), QChar(u','));
    m_separators->addItem(tr("Semicolon"), QChar(u';'));
    m_separators->addItem(tr("Tab"), QChar(u'\t'));
    m_separators->addItem(tr("Vertical bar"), QChar(u'|'));
    m_separators->setAccessibleName(tr("Separator"));
    m_encodings->addItems({QStringLiteral("UTF-8"), QStringLiteral("UTF-16")});
    m_encodings->setAccessibleName(tr("Encoding"));
    m_nullText->setPlaceholderText(tr("nothing"));
    m_nullText->setAccessibleName(tr("Text for NULL"));
    m_form->addRow(tr("&Separator:"), m_separators);
    m_form->addRow(tr("&Encoding:"), m_encodings);
    for (QCheckBox *const box : {m_byteOrderMark, m_header, m_quotes})
        m_form->addRow({}, box);
    m_form->addRow(tr("&Text for NULL:"), m_nullText);
}

void KNExportDialog::showCsvOptions(const CsvOptions &options)
{
    m_separators->setCurrentIndex(m_separators->findData(QChar(QLatin1Char(options.separator))));
    m_encodings->setCurrentIndex(static_cast<int>(options.encoding));
    m_byteOrderMark->setChecked(options.hasByteOrderMark);
    m_header->setChecked(options.hasHeader);
    m_quotes->setChecked(options.quotesAlways);
    m_nullText->setText(options.nullText);
}

QString KNExportDialog::summary() const
{
    return m_summary->text();
}

QString KNExportDialog::extension() const
{
    return m_formats->currentData().toString();
}

CsvOptions KNExportDialog::csvOptions() const
{
    CsvOptions options;
    options.separator = m_separators->currentData().toChar().toLatin1();
    options.encoding = static_cast<CsvOptions::Encoding>(m_encodings->currentIndex());
    options.hasByteOrderMark = m_byteOrderMark->isChecked();
    options.hasHeader = m_header->isChecked();
    options.quotesAlways = m_quotes->isChecked();
    options.nullText = m_nullText->text();
    return options;
}

void KNExportDialog::remember() const
{
    KNUserDefaults::standardUserDefaults()->setObject(ExportFormat, extension());
    csvOptions().remember();
}
