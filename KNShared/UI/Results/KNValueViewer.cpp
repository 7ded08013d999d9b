#include "UI/Results/KNValueViewer.h"

#include "Database/KNRowReader.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNReplaceFile.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/Editor/KNScintilla.h"
#include "UI/KNPreferences.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QPointer>

namespace {

using Form = KNValueText::Form;

constexpr int DarkEnoughForLight = 80;       // of 255, for text on a light background
constexpr qsizetype LongestLine = 5000;      // an editor is slow with longer lines
constexpr qsizetype LongestWrapped = 50'000; // an editor is slow to wrap longer ones

QString kindName(const KNValue &value)
{
    switch (value.kind()) {
    case KNValue::Kind::Text:
        return QStringLiteral("text");
    case KNValue::Kind::Bytes:
        return QStringLiteral("binary");
    case KNValue::Kind::Date:
        return QStringLiteral("date");
    case KNValue::Kind::Null:
        return QStringLiteral("NULL");
    default:
        return QStringLiteral("number");
    }
}

} // namespace

KNValueViewer::KNValueViewer(KNDatabaseResultSetPtr result, qsizetype storedRow, qsizetype column,
                             const QString &typeName, QWidget *parent)
    : QDialog(parent)
    , m_result(std::move(result))
    , m_row(storedRow)
    , m_column(column)
    , m_forms(new QComboBox(this))
    , m_remark(new QLabel(this))
    , m_editor(new QsciScintilla(this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    const QString name = m_result->columnNames().value(column);
    setWindowTitle(KNFormat(tr("%@, row %lld"), name.isEmpty() ? tr("(no name)") : name, storedRow + 1));
    const KNRowCell cell = KNRowReader(m_result->rows()).cell(storedRow, column);
    m_value = cell.storedValue(LargestShown);
    m_byteCount = static_cast<qsizetype>(cell.length);

    m_forms->addItems({tr("Text"), tr("JSON"), tr("XML"), tr("Hexadecimal")});
    m_forms->setAccessibleName(tr("Form in which the value is shown"));
    m_remark->setWordWrap(true);
    m_remark->setTextFormat(Qt::PlainText);
    m_editor->setAccessibleName(tr("Value"));
    m_editor->setReadOnly(true);
    m_editor->setUtf8(true);
    m_editor->setScrollWidth(1);
    m_editor->setScrollWidthTracking(true);
    m_editor->setMarginWidth(1, 0);

    auto *const type = new QLabel(typeName.isEmpty() ? kindName(m_value) : typeName, this);
    type->setTextFormat(Qt::PlainText);
    auto *const head = new QHBoxLayout;
    head->addWidget(type, 1);
    auto *const formsLabel = new QLabel(tr("Show &as:"), this);
    formsLabel->setBuddy(m_forms);
    head->addWidget(formsLabel);
    head->addWidget(m_forms);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton *const save = buttons->addButton(tr("&Save to File…"), QDialogButtonBox::ActionRole);
    save->setAutoDefault(false);
    save->setEnabled(!m_value.isNull());
    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addWidget(m_editor, 1);
    layout->addWidget(m_remark);
    layout->addWidget(buttons);
    // Wide enough for a hexadecimal dump.
    const QFontMetrics metrics(KNPreferences::current().editorFont);
    resize(metrics.horizontalAdvance(QLatin1Char('0')) * 90, metrics.height() * 30);

    connect(save, &QPushButton::clicked, this, &KNValueViewer::saveToFile);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    connect(m_forms, &QComboBox::activated, this, [this](int form) { prepare(static_cast<Form>(form)); });
    paintEditor();
    m_editor->setFocus();
    prepare(std::nullopt);
}

QString KNValueViewer::text() const
{
    return m_editor->text();
}

QString KNValueViewer::remark() const
{
    return m_remark->text();
}

/// Formats the value in the background; without a form, in the suggested one.
void KNValueViewer::prepare(std::optional<Form> form)
{
    m_isLoading = true;
    const QPointer<KNValueViewer> self(this);
    KNDispatch::globalQueue([self, form, value = m_value, generation = ++m_generation] {
        const Form chosen = form ? *form : KNValueText::formOf(value);
        bool wasBroken = false;
        const QString text =
            KNValueText::withShortLines(KNValueText::text(value, chosen), LongestLine, &wasBroken);
        KNDispatch::mainQueue([self, chosen, text, wasBroken, generation] {
            if (self && self->m_generation == generation)
                self->showText(chosen, text, wasBroken);
        });
    });
}

void KNValueViewer::showText(Form form, const QString &text, bool linesWereBroken)
{
    m_isLoading = false;
    m_forms->setCurrentIndex(static_cast<int>(form));
    QsciLexer *lexer = nullptr;
    if (form == Form::Json)
        lexer = new QsciLexerJSON(m_editor);
    else if (form == Form::Xml)
        lexer = new QsciLexerXML(m_editor);
    delete m_editor->lexer();
    m_editor->setLexer(lexer);
    paintEditor();
    const bool wraps = form != Form::Hex && text.size() <= LongestWrapped;
    m_editor->setWrapMode(wraps ? QsciScintilla::WrapWord : QsciScintilla::WrapNone);
    m_editor->setText(m_value.isNull() ? KNPreferences::current().nullText : text);
    QStringList remarks;
    if (m_byteCount > LargestShown)
        remarks.append(KNFormat(tr("The first %lld KB of %lld KB are shown. Saving writes the whole value."),
                                LargestShown / 1024, m_byteCount / 1024));
    if (linesWereBroken)
        remarks.append(KNFormat(tr("Lines of more than %lld characters are broken here."), LongestLine));
    if (m_value.isNull())
        remarks.append(tr("The value is NULL."));
    m_remark->setText(remarks.join(QLatin1Char(' ')));
    m_remark->setVisible(!remarks.isEmpty());
}

void KNValueViewer::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        paintEditor();
}

/// Sets the editor's font and colours: those of the palette, and lexer colours that are readable on it.
void KNValueViewer::paintEditor()
{
    const QFont font = KNPreferences::current().editorFont;
    const QColor ground = palette().color(QPalette::Base);
    const QColor ink = palette().color(QPalette::Text);
    const bool isDark = ground.lightness() < ink.lightness();
    if (QsciLexer *const lexer = m_editor->lexer()) {
        lexer->setFont(font);
        lexer->setPaper(ground);
        lexer->setDefaultPaper(ground);
        for (int style = 0; style < 128; ++style) {
            QColor colour = lexer->defaultColor(style);
            const bool isInk = colour.lightness() < 20;
            const int lightness =
                isDark ? 255 - colour.lightness() * 2 / 5 : std::min(colour.lightness(), DarkEnoughForLight);
            colour.setHsl(colour.hslHue(), colour.hslSaturation(), lightness);
            lexer->setColor(isInk ? ink : colour, style);
        }
    }
    m_editor->setFont(font);
    m_editor->setPaper(ground);
    m_editor->setColor(ink);
    m_editor->setCaretForegroundColor(ink);
    m_editor->setSelectionBackgroundColor(palette().color(QPalette::Highlight));
    m_editor->setSelectionForegroundColor(palette().color(QPalette::HighlightedText));
}

void KNValueViewer::saveToFile()
{
    const bool isBytes = m_value.kind() == KNValue::Kind::Bytes;
    const KNFilePanels::Request request = {tr("Save Value"),
                                           isBytes ? QStringLiteral("value.bin")
                                                   : QStringLiteral("value.txt"),
                                           {tr("All files (*)")}};
    const QPointer<KNValueViewer> self(this);
    KNFilePanels::shared().chooseFileToSave(this, request, [self](const QString &path) {
        if (self)
            self->writeTo(path);
    });
}

/// Writes the whole value in the background: bytes unchanged, other values as UTF-8 text.
void KNValueViewer::writeTo(const QString &path)
{
    const QPointer<KNValueViewer> self(this);
    KNDispatch::globalQueue([self, path, result = m_result, row = m_row, column = m_column] {
        const KNValue value = KNRowReader(result->rows()).cell(row, column).storedValue();
        const QByteArray bytes =
            value.kind() == KNValue::Kind::Bytes ? value.bytes() : value.displayText().toUtf8();
        QString why;
        if (KNReplaceFile(path, bytes, &why))
            return;
        const KNError error(QStringLiteral("com.quorvex.vantor.export"), 0,
                            KNFormat(tr("The file %@ could not be written. %@"), path, why));
        KNDispatch::mainQueue([self, error] {
            if (self)
                KNAlerts::shared().showError(self, error);
        });
    });
}
