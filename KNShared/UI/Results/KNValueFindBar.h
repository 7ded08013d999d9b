#pragma once

#include "UI/Editor/KNSearchBar.h"

class QsciScintilla;

/// Finds text in a read-only editor. On the UI thread.
class KNSHAREDUI_EXPORT KNValueFindBar : public KNSearchBar
{
    Q_OBJECT

public:
    explicit KNValueFindBar(QsciScintilla *editor, QWidget *parent = nullptr);

public Q_SLOTS:
    void findNext() override;
    void findPrevious() override;

private:
    void find(bool forward, bool fromSelectionStart);

    QsciScintilla *const m_editor;
};
