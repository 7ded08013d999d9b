#pragma once

#include "Database/KNQueryDetails.h"
#include "Foundation/KNNotificationCenter.h"
#include "SQL/SQLMetadataTokenizer.h"
#include "UI/Editor/KNSQLLineState.h"
#include "UI/Editor/KNScintilla.h"
#include "UI/KNSharedUIExport.h"

class KNSQLLexer;
class QMenu;

/// An SQL editor: syntax colours, folding, line numbers, brace matching, comment toggling, multiple cursors,
/// and an error marker. Font and tab width are the user's preferences; colours follow the palette. Positions
/// and lengths are UTF-16 units. On the UI thread.
class KNSHAREDUI_EXPORT KNSQLEditor : public QsciScintilla
{
    Q_OBJECT

public:
    explicit KNSQLEditor(QWidget *parent = nullptr);

    /// The dialect to colour: how its text is cut into tokens, and its words in any case.
    void setDialect(const SQLTokenizerOptions &options, const QStringList &keywords,
                    const QStringList &functions, const QStringList &dataTypes = {});

    const SQLTokenizerOptions &tokenizerOptions() const { return m_tokenizerOptions; }

    /// The complete text.
    QString wholeText() const;
    /// Replaces the text, marks it as unmodified and clears the undo history. Return inserts the same line
    /// end as the text's first one.
    void setWholeText(const QString &text);

    /// The selection from its first to its last character; an empty range at the cursor if nothing is
    /// selected.
    KNRange selectedRange() const;
    /// Selects the range and scrolls to it. Positions beyond the text are set to its end.
    void selectRange(const KNRange &range);
    QString textOfRange(const KNRange &range) const;
    /// The line (from 1) of the cursor.
    int cursorLine() const;
    /// The number of UTF-16 units before the cursor in its line, plus 1.
    int cursorColumn() const;
    /// The line end that Return inserts: "LF", "CRLF" or "CR".
    QString lineEndName() const;
    /// The characters of that line end.
    QString lineEnd() const;

    /// Lines, counted from 0.
    struct Lines
    {
        int first;
        int last;
    };
    /// The lines of the selection, without a last one that it only reaches at its beginning.
    Lines selectedLines() const;
    /// The elements that are open at the beginning of a line, such as a comment.
    KNSQLLineState stateBefore(int line) const;
    /// The text of lines, without the line end of the last one.
    KNRange rangeOfLines(const Lines &lines) const;

    struct Replacement
    {
        KNRange range;
        QString text;
    };
    /// Replaces ranges that do not overlap and are sorted by position, as one undo step.
    void replaceRanges(const QList<Replacement> &replacements);
    /// Replaces the selection with a text and moves the cursor behind it.
    void insertText(const QString &text);

    /// Underlines the range and marks its line in the margin until the next edit or clearErrorMarks().
    void markError(const KNRange &range);
    /// Marks a line (from 1) in the margin only.
    void markErrorLine(int line);
    void clearErrorMarks();
    /// The underlined ranges in the order in which they were marked.
    const QList<KNRange> &errorMarks() const { return m_errorMarks; }
    /// The lines (from 1) marked in the margin, ascending.
    QList<int> errorLines() const;

public Q_SLOTS:
    /// Comments out the selected lines, or uncomments them if all of them are line comments.
    void toggleComment();
    void commentLines();
    void uncommentLines();
    /// Moves to a line (from 1), or to the last one if there are fewer.
    void goToLine(int line);
    /// Asks the user for a line and moves to it.
    void askForLine();
    void resetZoom();

Q_SIGNALS:
    /// The context menu is about to be shown for the text at this position.
    void contextMenuAboutToShow(QMenu *menu, qsizetype location);

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool isShortcutOfWindow(const QKeyEvent &key) const;
    void configure();
    void releaseKeys();
    void addKeys();
    void applyPreferences();
    void applyColours();
    void fitMargins();
    void editLines(bool comments);
    int positionOf(qsizetype location) const;
    qsizetype locationOf(int position) const;

    KNSQLLexer *const m_lexer;
    SQLTokenizerOptions m_tokenizerOptions;
    QList<KNRange> m_errorMarks;
    bool m_hasErrorMarks = false;
    KNNotificationCenter::Token m_preferencesObserver;
};
