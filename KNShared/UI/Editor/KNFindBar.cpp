#include "UI/Editor/KNFindBar.h"

#include "Foundation/KNDispatch.h"
#include "UI/Editor/KNSQLEditor.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <algorithm>

namespace {

QList<qsizetype> matchesIn(const QString &text, const QRegularExpression &expression)
{
    QList<qsizetype> places;
    auto matches = expression.globalMatch(text);
    while (matches.hasNext() && places.size() < KNFindBar::CountLimit)
        places.append(matches.next().capturedStart());
    return places;
}

} // namespace

KNFindBar::KNFindBar(KNSQLEditor *editor, QWidget *parent)
    : KNSearchBar(editor, tr("Find"), parent)
    , m_editor(editor)
    , m_replacement(new QLineEdit(this))
    , m_matchesCase(new QCheckBox(tr("Match &case"), this))
    , m_wholeWords(new QCheckBox(tr("Whole &words"), this))
    , m_isExpression(new QCheckBox(tr("Regular e&xpression"), this))
    , m_countTimer(new QTimer(this))
{
    auto *const findLabel = new QLabel(tr("F&ind:"), this);
    findLabel->setBuddy(field());
    auto *const replaceLabel = new QLabel(tr("Re&place:"), this);
    replaceLabel->setBuddy(m_replacement);
    m_replacement->setAccessibleName(tr("Replace with"));
    auto *const replaceOne = newButton(tr("Replace"), tr("Replace this match"));
    auto *const replaceEvery = newButton(tr("Replace All"), tr("Replace all matches"));
    m_replaceWidgets = {replaceLabel, m_replacement, replaceOne, replaceEvery};

    auto *const options = new QHBoxLayout;
    for (QCheckBox *const box : {m_matchesCase, m_wholeWords, m_isExpression}) {
        options->addWidget(box);
        connect(box, &QCheckBox::toggled, this, &KNFindBar::patternChanged);
    }
    options->addWidget(messageLabel(), 1);
    auto *const grid = new QGridLayout(this);
    grid->addWidget(findLabel, 0, 0);
    grid->addWidget(field(), 0, 1);
    grid->addWidget(previousButton(), 0, 2);
    grid->addWidget(nextButton(), 0, 3);
    grid->addWidget(closeButton(), 0, 4);
    grid->addWidget(replaceLabel, 1, 0);
    grid->addWidget(m_replacement, 1, 1);
    grid->addWidget(replaceOne, 1, 2);
    grid->addWidget(replaceEvery, 1, 3, 1, 2);
    grid->addLayout(options, 2, 1, 1, 4);
    grid->setColumnStretch(1, 1);
    QWidget *before = field();
    for (QWidget *const widget : std::initializer_list<QWidget *>{
             m_replacement, previousButton(), nextButton(), replaceOne, replaceEvery, m_matchesCase,
             m_wholeWords, m_isExpression, closeButton()}) {
        setTabOrder(before, widget);
        before = widget;
    }

    m_countTimer->setSingleShot(true);
    m_countTimer->setInterval(150);
    connect(m_countTimer, &QTimer::timeout, this, &KNFindBar::count);
    connect(field(), &QLineEdit::textChanged, this, &KNFindBar::patternChanged);
    connect(replaceOne, &QToolButton::clicked, this, &KNFindBar::replace);
    connect(replaceEvery, &QToolButton::clicked, this, &KNFindBar::replaceAll);
    connect(editor, &KNSQLEditor::textChanged, this, [this] {
        m_isCounted = false;
        if (isVisible())
            m_countTimer->start();
    });
}

KNTextSearch KNFindBar::search() const
{
    return {field()->text(), m_isExpression->isChecked(), m_matchesCase->isChecked(),
            m_wholeWords->isChecked()};
}

void KNFindBar::showFind()
{
    show(false);
}

void KNFindBar::showReplace()
{
    show(true);
}

void KNFindBar::show(bool withReplace)
{
    for (QWidget *const widget : std::as_const(m_replaceWidgets))
        widget->setVisible(withReplace);
    const QString selected = m_editor->textOfRange(m_editor->selectedRange());
    if (!selected.isEmpty() && !selected.contains(u'\n') && !selected.contains(u'\r'))
        field()->setText(m_isExpression->isChecked() ? QRegularExpression::escape(selected) : selected);
    open();
    patternChanged();
}

void KNFindBar::findNext()
{
    const QRegularExpression expression = search().expression();
    if (field()->text().isEmpty() || !expression.isValid())
        return;
    const QString text = m_editor->wholeText();
    const KNRange selection = m_editor->selectedRange();
    qsizetype from = selection.location + selection.length;
    auto match = expression.match(text, from);
    if (match.hasMatch() && match.capturedLength() == 0 && match.capturedStart() == selection.location)
        match = ++from <= text.size() ? expression.match(text, from) : QRegularExpressionMatch();
    if (!match.hasMatch())
        match = expression.match(text);
    select(match);
}

void KNFindBar::findPrevious()
{
    const QRegularExpression expression = search().expression();
    if (field()->text().isEmpty() || !expression.isValid())
        return;
    const QString text = m_editor->wholeText();
    const qsizetype before = m_editor->selectedRange().location;
    QRegularExpressionMatch last;
    QRegularExpressionMatch found;
    for (auto matches = expression.globalMatch(text); matches.hasNext();) {
        last = matches.next();
        if (last.capturedStart() < before)
            found = last;
        else if (found.hasMatch())
            break;
    }
    select(found.hasMatch() ? found : last);
}

bool KNFindBar::select(const QRegularExpressionMatch &match)
{
    if (!match.hasMatch()) {
        sayCount(-1, 0, false);
        return false;
    }
    m_editor->selectRange({match.capturedStart(), match.capturedLength()});
    if (m_isCounted)
        showCount();
    return true;
}

void KNFindBar::replace()
{
    const KNTextSearch wanted = search();
    const QRegularExpression expression = wanted.expression();
    if (wanted.pattern.isEmpty() || !expression.isValid())
        return;
    const KNRange selection = m_editor->selectedRange();
    const auto match = expression.match(m_editor->wholeText(), selection.location);
    if (match.hasMatch() && match.capturedStart() == selection.location &&
        match.capturedLength() == selection.length) {
        const QString text = wanted.replacement(match, m_replacement->text());
        m_editor->replaceRanges({{selection, text}});
        m_editor->selectRange({selection.location + text.size(), 0});
    }
    findNext();
}

void KNFindBar::replaceAll()
{
    const KNTextSearch wanted = search();
    const QRegularExpression expression = wanted.expression();
    if (wanted.pattern.isEmpty() || !expression.isValid())
        return;
    QList<KNSQLEditor::Replacement> replacements;
    const QString text = m_editor->wholeText();
    for (auto matches = expression.globalMatch(text); matches.hasNext();) {
        const auto match = matches.next();
        replacements.append({{match.capturedStart(), match.capturedLength()},
                             wanted.replacement(match, m_replacement->text())});
    }
    m_editor->replaceRanges(replacements);
    m_countTimer->stop();
    ++m_generation;
    say(tr("%n replaced", nullptr, static_cast<int>(replacements.size())), replacements.isEmpty());
}

void KNFindBar::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && focusWidget() == m_replacement)
        replace();
    else
        KNSearchBar::keyPressEvent(event);
}

void KNFindBar::patternChanged()
{
    m_isCounted = false;
    ++m_generation;
    m_countTimer->stop();
    const QRegularExpression expression = search().expression();
    if (field()->text().isEmpty()) {
        say({});
    } else if (!expression.isValid()) {
        say(tr("%1, at %2").arg(expression.errorString()).arg(search().errorOffset() + 1), true);
    } else {
        say({});
        m_countTimer->start();
    }
}

void KNFindBar::count()
{
    const QRegularExpression expression = search().expression();
    if (field()->text().isEmpty() || !expression.isValid())
        return;
    KNDispatch::globalQueue(
        [bar = QPointer(this), generation = ++m_generation, expression, text = m_editor->wholeText()] {
            const QList<qsizetype> matches = matchesIn(text, expression);
            KNDispatch::mainQueue([bar, generation, matches] {
                if (!bar || bar->m_generation != generation)
                    return;
                bar->m_matches = matches;
                bar->m_isCounted = true;
                bar->showCount();
            });
        });
}

void KNFindBar::showCount()
{
    const KNRange selection = m_editor->selectedRange();
    const auto current = std::lower_bound(m_matches.cbegin(), m_matches.cend(), selection.location);
    const bool isCurrent =
        current != m_matches.cend() && *current == selection.location && selection.length > 0;
    sayCount(isCurrent ? current - m_matches.cbegin() : -1, m_matches.size(), m_matches.size() == CountLimit);
}
