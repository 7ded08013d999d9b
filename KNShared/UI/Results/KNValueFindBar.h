#pragma once

#include "UI/KNSharedUIExport.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QsciScintilla;

/// Finds text in a read-only editor. Hidden until opened; Escape hides it. On the UI thread.
class KNSHAREDUI_EXPORT KNValueFindBar : public QWidget
{
    Q_OBJECT

public:
    explicit KNValueFindBar(QsciScintilla *editor, QWidget *parent = nullptr);

    QLineEdit *field() const { return m_field; }
    QString message() const;

public Q_SLOTS:
    void open();
    void close();
    /// Selects the next match; continues at the beginning after the last.
    void findNext();
    void findPrevious();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void find(bool forward, bool fromSelectionStart);

    QsciScintilla *const m_editor;
    QLineEdit *m_field;
    QLabel *m_message;
};
