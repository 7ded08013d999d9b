#pragma once

#include "SQL/Snippets/KNSnippet.h"
#include "UI/KNSharedUIExport.h"

#include <QDialog>
#include <QList>

class KNCautionBar;
class KNSnippetStore;
class QDialogButtonBox;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

/// Lets the user change the snippets of a language. They are saved when the dialog is accepted; it stays open
/// if that fails. On the UI thread.
class KNSHAREDUI_EXPORT KNSnippetsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit KNSnippetsDialog(KNSnippetStore &store, QWidget *parent = nullptr);

    void accept() override;

private:
    void arrange();
    void fill(QList<KNSnippet> snippets);
    void showCurrent();
    void change();
    void add();
    void remove();
    void restoreOriginals();
    void update();
    QString problem() const;

    KNSnippetStore &m_store;
    QList<KNSnippet> m_snippets;
    KNCautionBar *const m_caution;
    QListWidget *const m_list;
    QLineEdit *const m_name;
    QLineEdit *const m_title;
    QPlainTextEdit *const m_text;
    QPushButton *const m_add;
    QPushButton *const m_remove;
    QDialogButtonBox *const m_buttons;
    bool m_isEditable = false; ///< once the user's file was read
    bool m_isFilling = false;
};
