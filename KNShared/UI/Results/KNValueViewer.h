#pragma once

#include "Database/KNResultSetHolder.h"
#include "UI/KNSharedUIExport.h"
#include "UI/Results/KNValueText.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QsciScintilla;

/// Shows one value, or the first part of a huge one, as text, indented JSON or XML, or hexadecimal, and saves
/// it to a file. Deletes itself when closed. On the UI thread.
class KNSHAREDUI_EXPORT KNValueViewer : public QDialog
{
    Q_OBJECT

public:
    /// The maximum number of bytes shown; the whole value can be saved.
    static constexpr qsizetype LargestShown = 1024 * 1024;

    /// Shows a value of the result set; `storedRow` is the stored row number.
    KNValueViewer(KNDatabaseResultSetPtr result, qsizetype storedRow, qsizetype column,
                  const QString &typeName, QWidget *parent);

    /// The displayed text.
    QString text() const;
    QString remark() const;
    /// Whether the value is being prepared.
    bool isLoading() const { return m_isLoading; }

public Q_SLOTS:
    void saveToFile();

protected:
    void changeEvent(QEvent *event) override;

private:
    void prepare(std::optional<KNValueText::Form> form);
    void showText(KNValueText::Form form, const QString &text, bool linesWereBroken);
    void writeTo(const QString &path);
    void paintEditor();

    const KNDatabaseResultSetPtr m_result;
    const qsizetype m_row;
    const qsizetype m_column;
    KNValue m_value; ///< the displayed part
    qsizetype m_byteCount = 0;
    bool m_isLoading = false;
    int m_generation = 0; ///< of the form requested last
    QComboBox *m_forms;
    QLabel *m_remark;
    QsciScintilla *m_editor;
};
