#include "Desktop/Query/MessagesView.h"

#include "Database/KNMessageText.h"
#include "UI/Editor/KNSQLColours.h"

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTextBlock>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int ShowingTime = 20; // milliseconds for putting in messages before the program has its turn
constexpr int PiecesAtOnce = 200;
constexpr qsizetype MostErrorTargets = 1000;

} // namespace

MessagesView::MessagesView(QWidget *parent)
    : QPlainTextEdit(parent)
    , m_showTimer(new QTimer(this))
{
    setAccessibleName(tr("Messages"));
    setReadOnly(true);
    setMouseTracking(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setUndoRedoEnabled(false);
    m_showTimer->setInterval(0);
    connect(m_showTimer, &QTimer::timeout, this, &MessagesView::showPending);
}

void MessagesView::beginRun(const std::shared_ptr<KNResultSetHolder> &results)
{
    clearMessages();
    m_results = results;
}

void MessagesView::showNewResults()
{
    takeFinishedResults(false);
}

void MessagesView::finishRun(const KNError &error)
{
    const int before = m_errorCount;
    takeFinishedResults(true);
    m_results.reset();
    if (error && m_errorCount == 0 && before == 0)
        addText(error.descriptionWithSuggestion(), true);
    else if (m_isSilent && !m_silentSummary.isEmpty())
        addText(m_silentSummary, false);
}

void MessagesView::addText(const QString &text, bool isError)
{
    add({text, isError});
}

void MessagesView::addLink(const QString &text, const QString &link)
{
    add({text, false, {.isLink = true}, link});
}

void MessagesView::clearMessages()
{
    m_showTimer->stop();
    m_results.reset();
    m_pending.clear();
    m_position = 0;
    m_awaitingMessages.clear();
    m_errorTargets.clear();
    m_targets.clear();
    m_errorCount = 0;
    m_firstError.clear();
    m_isSilent = true;
    m_silentSummary.clear();
    clear();
    Q_EMIT errorCountChanged(0);
}

/// A result's messages are complete once the next result exists, or after the run.
void MessagesView::takeFinishedResults(bool all)
{
    if (!m_results)
        return;
    m_awaitingMessages += m_results->newResultSets(&m_position);
    const int before = m_errorCount;
    const qsizetype complete = m_awaitingMessages.size() - (all ? 0 : 1);
    qsizetype shown = 0;
    while (shown < complete && m_awaitingMessages[shown]->isFinished())
        addResult(*m_awaitingMessages[shown++]);
    m_awaitingMessages.remove(0, shown);
    if (m_errorCount != before)
        Q_EMIT errorCountChanged(m_errorCount);
}

void MessagesView::addResult(const KNDatabaseResultSet &result)
{
    const auto serverMessages = result.serverMessages();
    for (const DatabaseMessage &message : serverMessages)
        addMessage(message);
    const bool saysErrors = std::any_of(serverMessages.begin(), serverMessages.end(),
                                        [](const DatabaseMessage &message) { return message.isFailure(); });
    const auto messages = result.messages();
    const bool isSilent = result.isSilent() && messages.value(0).colour == KNDisplayMessage::Colour::Black;
    m_isSilent = m_isSilent && isSilent && serverMessages.isEmpty();
    if (isSilent)
        m_silentSummary = messages.value(0).text;
    for (const KNDisplayMessage &message : isSilent ? QList<KNDisplayMessage>() : messages) {
        const bool red = message.colour == KNDisplayMessage::Colour::Red;
        if (!red || !saysErrors) // red ones repeat the server's errors
            add({KNMessageText::summaryText(result, message.text), red});
    }
    if (const qsizetype dropped = result.rows().droppedRowCount())
        add({tr("The row limit keeps %1 rows of this result; %2 more were read and not kept.")
                 .arg(KNMessageText::countText(result.rows().rowCount()), KNMessageText::countText(dropped)),
             false});
}

MessagesView::Target MessagesView::targetOf(const DatabaseMessage &message)
{
    return {message.textRange, KNMessageText::lineOf(message)};
}

void MessagesView::addMessage(const DatabaseMessage &message)
{
    const Target target = targetOf(message);
    const bool isError = message.isFailure();
    if (isError) {
        if (m_errorCount++ == 0)
            m_firstError = KNMessageText::textOf(message);
        if ((target.range.isFound() || target.line > 0) && m_errorTargets.size() < MostErrorTargets)
            m_errorTargets.append(target);
    }
    m_pending.push_back({message, isError, target});
    m_showTimer->start();
}

void MessagesView::add(const Piece &piece)
{
    if (piece.isError) {
        if (m_errorCount++ == 0)
            m_firstError = std::get<QString>(piece.content);
        Q_EMIT errorCountChanged(m_errorCount);
    }
    m_pending.push_back(piece);
    m_showTimer->start();
}

void MessagesView::showPending()
{
    QElapsedTimer timer;
    timer.start();
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    while (!m_pending.empty() && timer.elapsed() < ShowingTime) {
        cursor.beginEditBlock();
        for (int i = 0; i < PiecesAtOnce && !m_pending.empty(); ++i) {
            const Piece piece = std::move(m_pending.front());
            m_pending.pop_front();
            showPiece(piece, cursor);
        }
        cursor.endEditBlock();
    }
    if (m_pending.empty())
        m_showTimer->stop();
}

void MessagesView::showPiece(const Piece &piece, QTextCursor &cursor)
{
    QTextCharFormat format;
    if (piece.isError)
        format.setForeground(KNSQLColours::forPalette(palette()).error);
    const int number = numberOf(piece.target);
    const auto *const message = std::get_if<DatabaseMessage>(&piece.content);
    const QString text = message ? KNMessageText::textOf(*message) : std::get<QString>(piece.content);
    const auto lines = text.split(u'\n');
    for (const QString &line : lines) {
        if (!document()->isEmpty() || cursor.blockNumber() > 0)
            cursor.insertBlock();
        cursor.block().setUserState(number);
        cursor.insertText(line.endsWith(u'\r') ? line.chopped(1) : line, format);
    }
    if (piece.link.isEmpty())
        return;
    QTextCharFormat link;
    link.setAnchor(true);
    link.setAnchorHref(piece.link);
    link.setFontUnderline(true);
    link.setForeground(palette().link());
    cursor.insertText(QStringLiteral(" "), {});
    cursor.insertText(piece.link, link);
    cursor.setCharFormat({});
}

/// Lets a text block refer to a target; 0 for one that leads nowhere.
int MessagesView::numberOf(const Target &target)
{
    if (!target.range.isFound() && target.line == 0 && !target.isLink)
        return 0;
    m_targets.append(target);
    return static_cast<int>(m_targets.size());
}

void MessagesView::mouseReleaseEvent(QMouseEvent *event)
{
    QPlainTextEdit::mouseReleaseEvent(event);
    if (event->button() != Qt::LeftButton || textCursor().hasSelection())
        return;
    const QPoint position = event->position().toPoint();
    const QTextCursor cursor = cursorForPosition(position);
    // A click beside the link must not run anything.
    if (const Target *const target = targetAt(cursor);
        target && (!target->isLink || !anchorAt(position).isEmpty()))
        activate(cursor);
}

void MessagesView::mouseMoveEvent(QMouseEvent *event)
{
    QPlainTextEdit::mouseMoveEvent(event);
    const bool isOverLink = !anchorAt(event->position().toPoint()).isEmpty();
    viewport()->setCursor(isOverLink ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

void MessagesView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        activate(textCursor());
    else
        QPlainTextEdit::keyPressEvent(event);
}

/// Null if the message leads nowhere.
const MessagesView::Target *MessagesView::targetAt(const QTextCursor &cursor) const
{
    const int number = cursor.block().userState();
    return number > 0 && number <= m_targets.size() ? &m_targets[number - 1] : nullptr;
}

void MessagesView::activate(const QTextCursor &cursor)
{
    const Target *const found = targetAt(cursor);
    if (!found)
        return;
    const Target target = *found; // a run that begins now removes it
    if (target.isLink)
        Q_EMIT linkActivated();
    else
        Q_EMIT targetActivated(target);
}

/// Recolours messages that are already shown, to suit the background.
void MessagesView::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    const QColor red = KNSQLColours::forPalette(palette()).error;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        for (auto part = block.begin(); part != block.end(); ++part) {
            const QTextFragment fragment = part.fragment();
            const QTextCharFormat before = fragment.charFormat();
            const QColor colour = before.isAnchor() ? palette().color(QPalette::Link) : red;
            if (!before.hasProperty(QTextFormat::ForegroundBrush) || before.foreground().color() == colour)
                continue;
            QTextCursor cursor(document());
            cursor.setPosition(fragment.position());
            cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
            QTextCharFormat format;
            format.setForeground(colour);
            cursor.mergeCharFormat(format);
            part = block.begin(); // the fragments may have changed
        }
    }
}
