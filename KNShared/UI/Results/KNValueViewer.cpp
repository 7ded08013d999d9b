#include "UI/Results/KNValueViewer.h"

#include "Database/KNRowReader.h"
#include "Export/ResultCopy.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNReplaceFile.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/Dialogs/KNButtonOrder.h"
#include "UI/Editor/KNScintilla.h"
#include "UI/KNPreferences.h"
#include "UI/Results/KNCountText.h"
#include "UI/Results/KNValueFindBar.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>

namespace {

using Form = KNValueText::Form;

constexpr int ImageForm = 4;                 // in the list of forms, after those of KNValueText
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

/// "3 characters, 4 bytes in UTF-8" for text, "4 bytes" for bytes; empty for other values. Slow for huge
/// ones.
QString lengthOf(const KNRowCell &cell)
{
    const auto bytes = static_cast<qint64>(cell.length);
    const QString byteText = bytes == 1 ? KNValueViewer::tr("1 byte")
                                        : KNFormat(KNValueViewer::tr("%@ bytes"), KNCountText(bytes));
    if (cell.tag == KNRowCell::Bytes || cell.tag == KNRowCell::FlagBytes)
        return byteText;
    if (cell.tag != KNRowCell::Text)
        return {};
    const auto characters = std::count_if(cell.data, cell.end(), [](unsigned char byte) {
        return (byte & 0xC0) != 0x80; // begins a character
    });
    return KNFormat(characters == 1 ? KNValueViewer::tr("%@ character, %@ in UTF-8")
                                    : KNValueViewer::tr("%@ characters, %@ in UTF-8"),
                    KNCountText(characters), byteText);
}

} // namespace

KNValueViewer::KNValueViewer(KNDatabaseResultSetPtr result, qsizetype storedRow, qsizetype column,
                             const QString &typeName, QWidget *parent)
    : QDialog(parent)
    , m_result(std::move(result))
    , m_row(storedRow)
    , m_column(column)
    , m_forms(new QComboBox(this))
    , m_description(new QLabel(this))
    , m_remark(new QLabel(this))
    , m_pages(new QStackedWidget(this))
    , m_editor(new QsciScintilla(this))
    , m_image(new QLabel(this))
    , m_findBar(new KNValueFindBar(m_editor, this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    const QString name = m_result->columnNames().value(column);
    setWindowTitle(
        KNFormat(tr("%@, row %@"), name.isEmpty() ? tr("(no name)") : name, KNCountText(storedRow + 1)));
    const KNRowCell cell = KNRowReader(m_result->rows()).cell(storedRow, column);
    m_value = cell.storedValue(LargestShown);
    m_byteCount = static_cast<qsizetype>(cell.length);
    m_imageFormat = KNValueImage::formatOf(m_value.bytes().left(64));
    m_typeName = typeName.isEmpty() ? kindName(m_value) : typeName;
    arrange();
    paintEditor();
    m_editor->setFocus();
    measure();
    choose(m_imageFormat.isEmpty() ? -1 : ImageForm);
}

void KNValueViewer::arrange()
{
    m_forms->addItems({tr("Text"), tr("JSON"), tr("XML"), tr("Hexadecimal")});
    if (!m_imageFormat.isEmpty())
        m_forms->addItem(tr("Image"));
    m_forms->setAccessibleName(tr("Form in which the value is shown"));
    m_description->setText(m_typeName);
    m_description->setTextFormat(Qt::PlainText);
    m_remark->setWordWrap(true);
    m_remark->setTextFormat(Qt::PlainText);
    m_editor->setAccessibleName(tr("Value"));
    m_editor->setReadOnly(true);
    m_editor->setUtf8(true);
    m_editor->setScrollWidth(1);
    m_editor->setScrollWidthTracking(true);
    m_editor->setMarginWidth(1, 0);
    m_editor->installEventFilter(this);
    m_image->setAccessibleName(tr("Image"));
    m_image->setAlignment(Qt::AlignCenter);
    auto *const imageArea = new QScrollArea(this);
    imageArea->setWidget(m_image);
    imageArea->setWidgetResizable(true);
    imageArea->setAccessibleName(tr("Value"));
    m_pages->addWidget(m_editor);
    m_pages->addWidget(imageArea);

    auto *const head = new QHBoxLayout;
    head->addWidget(m_description, 1);
    auto *const formsLabel = new QLabel(tr("Show &as:"), this);
    formsLabel->setBuddy(m_forms);
    head->addWidget(formsLabel);
    head->addWidget(m_forms);
    QDialogButtonBox *const buttons = m_buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    const auto addButton = [&](const QString &title, bool isEnabled, auto pressed) {
        QPushButton *const button = buttons->addButton(title, QDialogButtonBox::ActionRole);
        button->setAutoDefault(false);
        button->setEnabled(isEnabled);
        connect(button, &QPushButton::clicked, this, pressed);
        return button;
    };
    m_find = addButton(tr("&Find…"), true, [this] { m_findBar->open(); });
    addButton(tr("&Copy"), !m_value.isNull(), [this] { copyValue(); });
    addButton(tr("&Save to File…"), !m_value.isNull(), [this] { saveToFile(); });
    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_findBar);
    layout->addWidget(m_remark);
    layout->addWidget(buttons);
    KNOrderButtons(*this);
    // Wide enough for a hexadecimal dump.
    const QFontMetrics metrics(KNPreferences::current().editorFont);
    resize(metrics.horizontalAdvance(QLatin1Char('0')) * 90, metrics.height() * 30);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    connect(m_forms, &QComboBox::activated, this, &KNValueViewer::choose);
}

void KNValueViewer::addEditButton(std::function<void()> edit)
{
    QPushButton *const button = m_buttons->addButton(tr("&Edit…"), QDialogButtonBox::ActionRole);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, edit = std::move(edit)] {
        close();
        edit();
    });
    KNOrderButtons(*this);
}

/// Shows the value in a form of the list; -1 chooses the one that suits it.
void KNValueViewer::choose(int form)
{
    if (form == ImageForm)
        prepareImage();
    else
        prepare(form < 0 ? std::nullopt : std::optional(static_cast<Form>(form)));
}

/// Adds the length to the description, in the background.
void KNValueViewer::measure()
{
    KNDispatch::globalQueue(
        [self = QPointer(this), result = m_result, row = m_row, column = m_column, type = m_typeName] {
            const QString length = lengthOf(KNRowReader(result->rows()).cell(row, column));
            KNDispatch::mainQueue([self, length, type] {
                if (self && !length.isEmpty())
                    self->m_description->setText(KNFormat(tr("%@, %@"), type, length));
            });
        });
}

QString KNValueViewer::description() const
{
    return m_description->text();
}

QImage KNValueViewer::image() const
{
    return m_pages->currentWidget() == m_editor ? QImage() : m_image->pixmap().toImage();
}

void KNValueViewer::prepareImage()
{
    m_isLoading = true;
    m_forms->setCurrentIndex(ImageForm);
    KNDispatch::globalQueue([self = QPointer(this), result = m_result, row = m_row, column = m_column,
                             format = m_imageFormat, generation = ++m_generation] {
        // One byte more than the limit is enough to recognise a file as too large.
        const KNRowCell cell = KNRowReader(result->rows()).cell(row, column);
        const KNValueImage image =
            KNValueImage::decoded(cell.storedValue(KNValueImage::LargestFile + 1).bytes(), format);
        KNDispatch::mainQueue([self, image, generation] {
            if (self && self->m_generation == generation)
                self->showImage(image);
        });
    });
}

void KNValueViewer::showImage(const KNValueImage &image)
{
    m_isLoading = false;
    m_pages->setCurrentIndex(1);
    m_find->setEnabled(false);
    m_findBar->hide();
    m_image->setPixmap(QPixmap::fromImage(image.image));
    QStringList remarks;
    if (!image.problem.isEmpty())
        remarks.append(image.problem);
    else
        remarks.append(KNFormat(tr("%@ image of %d × %d pixels."),
                                QString::fromLatin1(m_imageFormat).toUpper(), image.size.width(),
                                image.size.height()));
    if (!image.image.isNull() && image.image.size() != image.size)
        remarks.append(tr("It is shown reduced."));
    setRemarks(remarks);
}

void KNValueViewer::setRemarks(const QStringList &remarks)
{
    m_remark->setText(remarks.join(QLatin1Char(' ')));
    m_remark->setVisible(!remarks.isEmpty());
}

void KNValueViewer::copyValue()
{
    if (const QImage shown = image(); !shown.isNull())
        return QGuiApplication::clipboard()->setImage(shown);
    if (m_byteCount > ResultCopy::LargestSize / 2)
        return setRemarks({tr("The value is too large for the clipboard. Save it to a file instead.")});
    KNDispatch::globalQueue([self = QPointer(this), result = m_result, row = m_row, column = m_column] {
        const QString text = KNRowReader(result->rows()).cell(row, column).storedValue().displayText();
        KNDispatch::mainQueue([self, text] {
            if (!self)
                return;
            QGuiApplication::clipboard()->setText(text);
            self->setRemarks({tr("The whole value was copied.")});
        });
    });
}

void KNValueViewer::keyPressEvent(QKeyEvent *event)
{
    const QKeyCombination keys = event->keyCombination();
    if (keys == (Qt::CTRL | Qt::Key_F) && m_find->isEnabled())
        m_findBar->open();
    else if (keys == QKeyCombination(Qt::Key_F3))
        m_findBar->findNext();
    else if (keys == (Qt::SHIFT | Qt::Key_F3))
        m_findBar->findPrevious();
    else
        QDialog::keyPressEvent(event);
}

/// The editor would keep Escape and the keys of the find bar for itself.
bool KNValueViewer::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(object, event);
    auto *const key = static_cast<QKeyEvent *>(event);
    const bool isMine = key->key() == Qt::Key_Escape || key->key() == Qt::Key_F3 ||
                        key->keyCombination() == (Qt::CTRL | Qt::Key_F);
    if (isMine)
        keyPressEvent(key);
    return isMine;
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
    m_pages->setCurrentIndex(0);
    m_find->setEnabled(true);
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
    setRemarks(remarks);
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
