#pragma once

#include "Database/KNQueryDetails.h"
#include "Foundation/KNNotificationCenter.h"
#include "SQL/SQLMetadataTokenizer.h"
#include "UI/Editor/KNScintilla.h"
#include "UI/KNSharedUIExport.h"

class KNSQLLexer;

/// An editor for SQL: colours, folds, line numbers, matching braces, comments at a key, multiple cursors, and
/// a mark where the server found an error. Font and tab width are the user's preferences; colours follow the
/// palette. Places and lengths count UTF-16 units, as everywhere in the house. On the UI thread.
class KNSHAREDUI_EXPORT KNSQLEditor : public QsciScintilla
{
    Q_OBJECT

public:
    explicit KNSQLEditor(QWidget *parent = nullptr);

    /// The dialect to colour: how its text is cut into tokens, and its words in any case.
    void setDialect(const SQLTokenizerOptions &options, const QStringList &keywords,
                    const QStringList &functions);

    /// The text with every character of it.
    QString wholeText() const;
    /// Replaces the text. It counts as unmodified, and there is nothing to undo. What Return enters follows
    /// the text's first line end.
    void setWholeText(const QString &text);

    /// The selection, from its first to its last character; of no length, at the cursor, when there is none.
    KNRange selectedRange() const;
    /// Selects the piece and brings it into view. Places beyond the text mean its end.
    void selectRange(const KNRange &range);
    QString textOfRange(const KNRange &range) const;

    struct Replacement
    {
        KNRange range;
        QString text;
    };
    /// Replaces pieces that do not overlap, in the order of the text, as one step of undo.
    void replaceRanges(const QList<Replacement> &replacements);
    /// Puts a text at the cursor instead of the selection, and leaves the cursor behind it.
    void insertText(const QString &text);

    /// Underlines the piece and marks its line in the margin, until the next edit or clearErrorMark().
    void markError(const KNRange &range);
    /// Marks a line (from 1) in the margin alone.
    void markErrorLine(int line);
    void clearErrorMark();
    /// What is underlined; not found when nothing is.
    KNRange errorMark() const;
    /// The line (from 1) that is marked in the margin; 0 when none is.
    int errorLine() const;

public Q_SLOTS:
    /// Takes the lines of the selection into line comments, or out of them when all of them are.
    void toggleComment();
    void commentLines();
    void uncommentLines();
    /// Goes to a line (from 1); beyond the end to the last one.
    void goToLine(int line);
    /// Asks which line.
    void askForLine();
    void resetZoom();

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void configure();
    void releaseKeys();
    void addKeys();
    void applyPreferences();
    void applyColours();
    void fitMargins();
    void selectedLines(int *firstLine, int *lastLine) const;
    void editLines(bool comments);
    int positionOf(qsizetype location) const;
    qsizetype locationOf(int position) const;

    KNSQLLexer *const m_lexer;
    KNRange m_errorMark;
    bool m_hasErrorMark = false;
    KNNotificationCenter::Token m_preferencesObserver;
};
