#pragma once

#include "UI/Dialogs/KNWindowController.h"

#include <QPersistentModelIndex>
#include <QPointer>

class KNResultEditing;
class QLabel;
class QPushButton;
class QsciScintilla;

/// Edits a long or multi-line text, or bytes as hexadecimal digits, of a result's cell. On the UI thread.
class KNSHAREDUI_EXPORT KNValueEditor : public KNWindowController
{
    Q_OBJECT

public:
    /// Largest value that can be edited: characters, or bytes.
    static constexpr qsizetype LargestEdited = 1024 * 1024;
    /// Larger values are edited here and not in the grid.
    static constexpr qsizetype LongestInGrid = 200;

    KNValueEditor(KNResultEditing &editing, const QModelIndex &cell, QWidget *parent);

    /// Whether a cell has a kind of value that is edited here.
    static bool canEdit(const KNResultEditing &editing, const QModelIndex &cell);
    /// Whether a cell's value is better edited here than in the grid.
    static bool suits(const KNResultEditing &editing, const QModelIndex &cell);

    QsciScintilla *editor() const { return m_editor; }
    QPushButton *applyButton() const { return m_apply; }
    QString remark() const;

    /// Return code 1 stores the value first; the sheet stays open if that fails.
    void done(int code) override;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void show(const QString &text);
    bool store();
    void say(const QString &remark);

    const QPointer<KNResultEditing> m_editing;
    const QPersistentModelIndex m_cell;
    QsciScintilla *m_editor;
    QLabel *m_remark;
    QPushButton *m_apply = nullptr;
};
