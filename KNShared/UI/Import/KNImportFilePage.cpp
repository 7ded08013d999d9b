#include "UI/Import/KNImportFilePage.h"

#include "Foundation/KNFormat.h"
#include "UI/Dialogs/KNFileField.h"
#include "UI/Import/KNImportTextModel.h"
#include "UI/Results/KNCountText.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTableView>

using Encoding = KNImportTextSource::Encoding;
using Format = KNImportFormat;

namespace {

constexpr qsizetype MostPreviewColumns = 100;

QStringList importFilters()
{
    QStringList patterns;
    for (const Format &format : Format::all())
        patterns.append(QStringLiteral("*.%1").arg(QLatin1String(format.extension)));
    patterns.append({QStringLiteral("*.txt"), QStringLiteral("*.ndjson")});
    return {KNImportFilePage::tr("Data files (%1)").arg(patterns.join(QLatin1Char(' '))),
            KNImportFilePage::tr("All files (*)")};
}

QString statusText(const KNImportFileAnalysis &analysis)
{
    if (analysis.error)
        return analysis.error.localizedDescription();
    QString text = KNImportFilePage::tr("The first rows of the file");
    if (analysis.isComplete)
        text = analysis.rows == 1 ? KNImportFilePage::tr("1 row")
                                  : KNFormat(KNImportFilePage::tr("%@ rows"),
                                             KNCountText(static_cast<qsizetype>(analysis.rows)));
    if (!analysis.assumedEncoding.isNull())
        text += KNFormat(KNImportFilePage::tr(". The file is not UTF-8 and is read as %@."),
                         analysis.assumedEncoding);
    return text;
}

} // namespace

KNImportFilePage::KNImportFilePage(KNImportSession &session, const QString &path, QWidget *parent)
    : KNImportPage(session, parent)
    , m_file(new KNFileField(tr("Choose a file to import"), importFilters()))
    , m_format(new QComboBox)
    , m_sheet(new QComboBox)
    , m_encoding(new QComboBox)
    , m_separator(new QComboBox)
    , m_quote(new QComboBox)
    , m_header(new QCheckBox(tr("The first row &holds the names of the columns")))
    , m_form(new QFormLayout)
    , m_rows(new KNImportTextModel(this))
    , m_preview(new QTableView)
    , m_status(new QLabel)
{
    addChoices();
    arrange();
    connect(m_file->lineEdit(), &QLineEdit::textChanged, this, &KNImportFilePage::chooseFormat);
    connect(m_format, &QComboBox::currentIndexChanged, this, &KNImportFilePage::readFile);
    for (QComboBox *const box : {m_sheet, m_encoding, m_separator, m_quote})
        connect(box, &QComboBox::currentIndexChanged, this, &KNImportFilePage::readFile);
    connect(m_header, &QCheckBox::toggled, this, &KNImportFilePage::readFile);
    connect(&session, &KNImportSession::analysed, this, &KNImportFilePage::showAnalysis);
    connect(&session, &KNImportSession::sheetsRead, this, &KNImportFilePage::showSheets);
    m_file->setPath(path);
    readFile();
}

void KNImportFilePage::addChoices()
{
    m_header->setChecked(true);
    for (const Format &format : Format::all())
        m_format->addItem(format.localizedTitle(), QString::fromLatin1(format.name));
    m_encoding->addItem(tr("Automatic"), static_cast<int>(Encoding::Detect));
    m_encoding->addItem(QStringLiteral("UTF-8"), static_cast<int>(Encoding::UTF8));
    m_encoding->addItem(QStringLiteral("UTF-16 LE"), static_cast<int>(Encoding::UTF16LittleEndian));
    m_encoding->addItem(QStringLiteral("UTF-16 BE"), static_cast<int>(Encoding::UTF16BigEndian));
    m_encoding->addItem(QStringLiteral("Windows-1252"), static_cast<int>(Encoding::Windows1252));
    m_separator->addItem(tr("Automatic"), QChar());
    m_separator->addItem(tr("Comma"), QChar(u','));
    m_separator->addItem(tr("Semicolon"), QChar(u';'));
    m_separator->addItem(tr("Tab"), QChar(u'\t'));
    m_separator->addItem(tr("Vertical bar"), QChar(u'|'));
    m_quote->addItem(tr("Double quote"), QChar(u'"'));
    m_quote->addItem(tr("Single quote"), QChar(u'\''));
    m_quote->addItem(tr("None"), QChar());
}

void KNImportFilePage::arrange()
{
    setFocusProxy(m_file);
    m_file->lineEdit()->setAccessibleName(tr("File"));
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_form->addRow(tr("&File:"), m_file);
    m_form->addRow(tr("F&ormat:"), m_format);
    m_form->addRow(tr("&Sheet:"), m_sheet);
    m_form->addRow(tr("&Encoding:"), m_encoding);
    m_form->addRow(tr("Se&parator:"), m_separator);
    m_form->addRow(tr("&Quotes:"), m_quote);
    m_form->addRow({}, m_header);
    m_preview->setModel(m_rows);
    m_preview->setAccessibleName(tr("First rows of the file"));
    m_preview->setSelectionMode(QAbstractItemView::SingleSelection);
    m_preview->setTabKeyNavigation(false);
    m_preview->setWordWrap(false);
    m_preview->verticalHeader()->hide();
    m_preview->horizontalHeader()->setHighlightSections(false);
    m_preview->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addLayout(m_form);
    layout->addWidget(m_preview, 1);
    layout->addWidget(m_status);
}

QString KNImportFilePage::title() const
{
    return tr("File");
}

QString KNImportFilePage::status() const
{
    return m_status->text();
}

/// Selects the format of the file's extension.
void KNImportFilePage::chooseFormat()
{
    const Format *const format = Format::of({m_file->path()});
    {
        const QSignalBlocker blockFormat(m_format);
        const QSignalBlocker blockSheet(m_sheet);
        if (format)
            m_format->setCurrentIndex(m_format->findData(QString::fromLatin1(format->name)));
        m_sheet->clear();
    }
    readFile();
}

KNImportFile KNImportFilePage::chosenFile() const
{
    KNImportFile file{m_file->path(), m_format->currentData().toString()};
    file.encoding = static_cast<Encoding>(m_encoding->currentData().toInt());
    file.separator = m_separator->currentData().toChar();
    file.quote = m_quote->currentData().toChar();
    file.hasHeader = m_header->isChecked();
    if (m_sheet->count() > 0)
        file.sheet = m_sheet->currentText();
    return file;
}

void KNImportFilePage::readFile()
{
    const KNImportFile file = chosenFile();
    const Format *const format = Format::of(file);
    const int uses = format ? format->uses : 0;
    m_form->setRowVisible(m_sheet, uses & Format::HasSheets);
    m_form->setRowVisible(m_encoding, uses & Format::HasEncoding);
    m_form->setRowVisible(m_separator, uses & Format::HasSeparator);
    m_form->setRowVisible(m_quote, (uses & Format::HasEncoding) && (uses & Format::HasHeader));
    m_form->setRowVisible(m_header, uses & Format::HasHeader);
    if (file.path.isEmpty()) {
        m_status->setText(tr("Choose a file to import."));
        Q_EMIT completeChanged();
        return;
    }
    m_status->setText(tr("Reading the file…"));
    if ((uses & Format::HasSheets) && m_sheet->count() == 0)
        session().readSheets(file.path);
    session().analyse(file, KNImportSession::PreviewedRows);
    Q_EMIT completeChanged();
}

void KNImportFilePage::showSheets(const QStringList &sheets)
{
    const QSignalBlocker block(m_sheet);
    m_sheet->clear();
    m_sheet->addItems(sheets);
}

void KNImportFilePage::showAnalysis()
{
    const KNImportFileAnalysis &analysis = session().analysis();
    QList<QStringList> rows;
    for (const KNImportRow &row : analysis.preview)
        rows.append(row.values.first(std::min(row.values.size(), MostPreviewColumns)));
    m_rows->setTexts(analysis.columnNames().mid(0, MostPreviewColumns), rows);
    m_preview->resizeColumnsToContents();
    m_status->setText(statusText(analysis));
    Q_EMIT completeChanged();
}

bool KNImportFilePage::isComplete() const
{
    return !m_file->path().isEmpty() && !session().isAnalysing() && !session().analysis().columns.isEmpty() &&
           !session().analysis().error;
}
