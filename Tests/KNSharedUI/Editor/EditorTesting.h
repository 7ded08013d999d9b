#pragma once

#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Editor/KNSQLLexer.h"

#include <memory>

/// What the tests of the editor share.
namespace EditorTesting {

inline const QString Emoji = QString::fromUtf8("\xF0\x9F\x98\x80");

/// An editor in view with the words of a small dialect.
inline std::unique_ptr<KNSQLEditor> editorWith(const QString &text)
{
    auto editor = std::make_unique<KNSQLEditor>();
    editor->setDialect({.nestedComments = true, .recognizesMSSQLVariables = true},
                       {QStringLiteral("select"), QStringLiteral("from"), QStringLiteral("left"),
                        QStringLiteral("begin"), QStringLiteral("end")},
                       {QStringLiteral("count"), QStringLiteral("LEFT"), QStringLiteral("@@VERSION")});
    editor->setWholeText(text);
    editor->resize(600, 400);
    editor->show();
    editor->activateWindow();
    editor->setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(editor.get()));
    editor->grab(); // which styles what is in view
    return editor;
}

inline void styleEverything(KNSQLEditor &editor)
{
    editor.SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0UL, -1L);
}

/// The style of the first character of a piece of the text that occurs in it once.
inline int styleAt(KNSQLEditor &editor, const QString &piece)
{
    const QString text = editor.wholeText();
    EXPECT_EQ(text.count(piece), 1) << piece.toStdString();
    const auto position = text.left(text.indexOf(piece)).toUtf8().size();
    return static_cast<int>(
        editor.SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT, static_cast<unsigned long>(position)));
}

/// For each line "(" when it opens a fold, and its depth.
inline QString folds(KNSQLEditor &editor)
{
    styleEverything(editor);
    QStringList lines;
    for (int line = 0; line < editor.lines(); ++line) {
        const auto level = editor.SendScintilla(QsciScintillaBase::SCI_GETFOLDLEVEL, line);
        const auto depth =
            (level & QsciScintillaBase::SC_FOLDLEVELNUMBERMASK) - QsciScintillaBase::SC_FOLDLEVELBASE;
        lines.append((level & QsciScintillaBase::SC_FOLDLEVELHEADERFLAG ? QStringLiteral("(") : QString()) +
                     QString::number(depth));
    }
    return lines.join(u' ');
}

} // namespace EditorTesting
