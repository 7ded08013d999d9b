#pragma once

#include "Database/KNQueryDetails.h"
#include "UI/Editor/KNTextSearch.h"
#include "UI/KNSharedUIExport.h"

#include <QPointer>
#include <QWidget>

class KNSQLEditor;
class QCheckBox;
class QLabel;
class QLineEdit;

/// Finds and replaces in an editor. Hidden until it is asked for; Escape hides it and goes back to the
/// editor. Matches are counted in the background. On the UI thread.
class KNSHAREDUI_EXPORT KNFindBar : public QWidget
{
    Q_OBJECT

public:
    explicit KNFindBar(KNSQLEditor *editor, QWidget *parent = nullptr);

    /// What is looked for now.
    KNTextSearch search() const;
    /// Matches that are counted at most.
    static constexpr qsizetype CountLimit = 100000;

public Q_SLOTS:
    /// Shows the bar, with the selected words as the pattern.
    void showFind();
    void showReplace();
    /// Selects the next match behind the cursor, beginning again at the end of the text.
    void findNext();
    void findPrevious();
    /// Replaces the match that is selected and goes to the next one.
    void replace();
    /// Replaces every match, as one step of undo.
    void replaceAll();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void show(bool withReplace);
    void patternChanged();
    void count();
    void showCount();
    bool select(const QRegularExpressionMatch &match);
    void say(const QString &text, bool isProblem);

    const QPointer<KNSQLEditor> m_editor;
    QLineEdit *m_pattern;
    QLineEdit *m_replacement;
    QCheckBox *m_matchesCase;
    QCheckBox *m_wholeWords;
    QCheckBox *m_isExpression;
    QLabel *m_message;
    QList<QWidget *> m_replaceWidgets;
    QTimer *m_countTimer;
    QList<qsizetype> m_matches; ///< where they begin, as counted last
    bool m_isCounted = false;
    quint64 m_generation = 0; ///< of the count that is wanted
};
