#pragma once

#include "SQL/SQLMetadataTokenizer.h"
#include "UI/Editor/KNSQLColours.h"
#include "UI/Editor/KNScintilla.h"
#include "UI/KNSharedUIExport.h"

#include <QSet>

/// Colours and folds SQL in an editor with the host's tokenizer: block comments nest; strings, bracketed and
/// quoted names may span lines. Can start at any line because it stores the open elements at each line's end.
/// Folds BEGIN ... END, CASE ... END and block comments.
class KNSHAREDUI_EXPORT KNSQLLexer : public QsciLexerCustom
{
public:
    enum Style {
        Text,
        Keyword,
        Function,
        DataType,
        String,
        Number,
        Comment,
        Variable,
        QuotedName,
        Operator,
        StyleCount
    };

    explicit KNSQLLexer(QObject *parent);

    /// The words of the dialect, in any case. A word of several lists is a function before a parenthesis,
    /// else a data type.
    void setDialect(const SQLTokenizerOptions &options, const QStringList &keywords,
                    const QStringList &functions, const QStringList &dataTypes);
    void setColours(const KNSQLColours &colours, const QFont &font);

    const char *language() const override { return "SQL"; }
    QString description(int style) const override;
    const char *wordCharacters() const override;
    int braceStyle() const override { return Operator; }
    void styleText(int start, int end) override;

private:
    class Lines;

    Style styleOf(const SQLToken &token, QStringView text) const;
    Style styleOfWord(const SQLToken &token, QStringView text) const;

    QSet<QString> m_keywords;  ///< in upper case
    QSet<QString> m_functions; ///< in upper case
    QSet<QString> m_dataTypes; ///< in upper case
    SQLTokenizerOptions m_options;
};
