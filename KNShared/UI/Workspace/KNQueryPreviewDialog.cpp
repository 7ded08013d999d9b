#include "UI/Workspace/KNQueryPreviewDialog.h"

#include "UI/Dialogs/KNCautionBar.h"
#include "UI/Editor/KNSQLColours.h"
#include "UI/Editor/KNSQLEditor.h"

#include <QBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr int InitialWidth = 680;
constexpr int FewestLines = 5; // initial height of the editor in lines
constexpr int MostLines = 18;
constexpr int TitleEnlargement = 2; // points

QLabel *newLabel()
{
    auto *const label = new QLabel;
    label->setTextFormat(Qt::PlainText); // object names must not be read as markup
    label->setWordWrap(true);
    return label;
}

} // namespace

KNQueryPreviewDialog::KNQueryPreviewDialog(QWidget *parent)
    : QDialog(parent)
    , m_title(newLabel())
    , m_information(newLabel())
    , m_caution(new KNCautionBar)
    , m_editor(new KNSQLEditor)
    , m_failure(newLabel())
    , m_progressTitle(newLabel())
    , m_progress(new QProgressBar)
    , m_cancel(new QPushButton(tr("Cancel")))
    , m_accept(new QPushButton)
{
    setWindowModality(Qt::WindowModal);
    QFont font = m_title->font();
    font.setBold(true);
    font.setPointSize(font.pointSize() + TitleEnlargement);
    m_title->setFont(font);
    m_editor->setAccessibleName(tr("Statements"));
    m_editor->setWrapMode(QsciScintilla::WrapWord); // the user must see the whole statement
    m_editor->setMinimumHeight(FewestLines * m_editor->textHeight(0));
    m_failure->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(tr("Progress"));
    m_cancel->setAutoDefault(false);
    m_accept->setDefault(true);
    arrange();
    connect(m_accept, &QPushButton::clicked, this, &KNQueryPreviewDialog::acceptRequested);
    connect(m_cancel, &QPushButton::clicked, this, &KNQueryPreviewDialog::reject);
    connect(m_caution->button(), &QPushButton::clicked, this, &KNQueryPreviewDialog::useCorrectedText);
    showRunning(false, {});
}

void KNQueryPreviewDialog::arrange()
{
    m_failure->hide();
    auto *const buttons = new QHBoxLayout;
    buttons->addWidget(m_progressTitle, 1);
    buttons->addWidget(m_progress, 1);
    buttons->addStretch(1);
    buttons->addWidget(m_accept);
    buttons->addWidget(m_cancel);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_title);
    layout->addWidget(m_information);
    layout->addWidget(m_caution);
    layout->addWidget(m_editor, 1);
    layout->addWidget(m_failure);
    layout->addLayout(buttons);
}

void KNQueryPreviewDialog::setDialect(const VantorDBC &details)
{
    m_editor->setDialect(details.tokenizerOptions(), details.keywords(), details.functions(),
                         details.dataTypes());
}

void KNQueryPreviewDialog::setTitles(const QString &title, const QString &information,
                                     const QString &acceptTitle)
{
    setWindowTitle(title);
    m_title->setText(title);
    m_information->setText(information);
    m_information->setVisible(!information.isEmpty());
    m_accept->setText(acceptTitle);
}

void KNQueryPreviewDialog::setRemoves(bool removes)
{
    m_removes = removes;
    suggestButton();
}

/// The button for the Return key.
void KNQueryPreviewDialog::suggestButton()
{
    QPushButton *const suggested = m_removes ? m_cancel : m_accept;
    suggested->setDefault(true);
    suggested->setFocus();
}

void KNQueryPreviewDialog::setEditable(bool editable)
{
    m_isEditable = editable;
    updateButtons();
}

void KNQueryPreviewDialog::showStatements(const QString &text, bool isIncomplete)
{
    replaceText(text);
    fitHeight();
    m_isAcceptable = !isIncomplete;
    updateButtons();
    if (!m_isEditable)
        suggestButton();
}

void KNQueryPreviewDialog::fitHeight()
{
    const int lines = std::clamp(m_editor->lines(), FewestLines, MostLines);
    const int others = minimumSizeHint().height() - m_editor->minimumHeight();
    resize(InitialWidth, others + (lines + 1) * m_editor->textHeight(0));
}

QString KNQueryPreviewDialog::statements() const
{
    return m_editor->wholeText();
}

void KNQueryPreviewDialog::showCaution(const QStringList &sentences, const QString &correctedText)
{
    m_notices = correctedText.isNull() ? sentences : sentences.mid(0, sentences.size() - 1);
    m_correctedText = correctedText;
    m_caution->setText(sentences.join(QLatin1Char('\n')));
    m_caution->setButtonTitle(correctedText.isNull() ? QString() : tr("Use Corrected Statement"));
    if (!correctedText.isNull() && !m_removes) {
        m_caution->button()->setDefault(true);
        m_caution->button()->setFocus();
    }
}

void KNQueryPreviewDialog::replaceText(const QString &text)
{
    m_editor->setReadOnly(false); // a read-only editor ignores text changes
    m_editor->setWholeText(text);
    updateButtons();
}

void KNQueryPreviewDialog::useCorrectedText()
{
    replaceText(m_correctedText);
    showCaution(m_notices, {});
    m_failure->hide();
    suggestButton();
}

void KNQueryPreviewDialog::showRunning(bool isRunning, const QString &progressTitle)
{
    m_isRunning = isRunning;
    m_progressTitle->setText(progressTitle);
    m_progressTitle->setVisible(isRunning);
    m_progress->setRange(0, 0);
    m_progress->setVisible(isRunning);
    m_cancel->setEnabled(true);
    if (isRunning) {
        m_editor->clearErrorMarks();
        m_failure->hide();
    }
    updateButtons();
}

void KNQueryPreviewDialog::showProgress(int done, int total)
{
    if (total < 2)
        return; // an indicator that jumps to its end shows nothing
    m_progress->setRange(0, total);
    m_progress->setValue(done);
}

void KNQueryPreviewDialog::showFailure(const QString &text, const KNRange &range, quint64 line)
{
    QPalette colours = m_failure->palette();
    colours.setColor(QPalette::WindowText, KNSQLColours::forPalette(palette()).error);
    m_failure->setPalette(colours);
    m_failure->setText(text);
    m_failure->show();
    if (line > 0)
        m_editor->markErrorLine(static_cast<int>(line));
    else if (range.isFound())
        m_editor->markError(range);
}

void KNQueryPreviewDialog::reject()
{
    if (m_isRunning)
        m_cancel->setEnabled(false);
    Q_EMIT cancelRequested();
}

void KNQueryPreviewDialog::updateButtons()
{
    m_editor->setReadOnly(!m_isEditable || m_isRunning);
    m_accept->setEnabled(m_isAcceptable && !m_isRunning);
    m_caution->button()->setEnabled(!m_isRunning);
}
