#pragma once

#include "Database/KNQueryDetails.h"
#include "UI/Editor/KNSearchBar.h"
#include "UI/Editor/KNTextSearch.h"

class KNSQLEditor;
class QCheckBox;
class QLineEdit;

/// Finds and replaces text in an editor. Matches are counted in the background. On the UI thread.
class KNSHAREDUI_EXPORT KNFindBar : public KNSearchBar
{
    Q_OBJECT

public:
    explicit KNFindBar(KNSQLEditor *editor, QWidget *parent = nullptr);

    /// The current search.
    KNTextSearch search() const;
    /// The maximum number of counted matches.
    static constexpr qsizetype CountLimit = 100000;

public Q_SLOTS:
    /// Shows the bar with the selected text as the pattern.
    void showFind();
    void showReplace();
    /// Selects the next match after the cursor.
    void findNext() override;
    void findPrevious() override;
    /// Replaces the selected match and selects the next one.
    void replace();
    /// Replaces every match as one undo step.
    void replaceAll();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void show(bool withReplace);
    void patternChanged();
    void count();
    void showCount();
    bool select(const QRegularExpressionMatch &match);

    const QPointer<KNSQLEditor> m_editor;
    QLineEdit *m_replacement;
    QCheckBox *m_matchesCase;
    QCheckBox *m_wholeWords;
    QCheckBox *m_isExpression;
    QList<QWidget *> m_replaceWidgets;
    QTimer *m_countTimer;
    QList<qsizetype> m_matches; ///< start positions of the matches last counted
    bool m_isCounted = false;
    quint64 m_generation = 0; ///< of the requested count
};
