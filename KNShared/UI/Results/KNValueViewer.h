#pragma once

#include "Database/KNResultSetHolder.h"
#include "UI/KNSharedUIExport.h"
#include "UI/Results/KNValueImage.h"
#include "UI/Results/KNValueText.h"

#include <QDialog>

#include <functional>

class QComboBox;
class KNValueFindBar;
class QDialogButtonBox;
class QLabel;
class QPushButton;
class QStackedWidget;
class QsciScintilla;

/// Shows one value, or the first part of a huge one, as text, indented JSON or XML, hexadecimal or an image;
/// finds text in it, copies it and saves it to a file. Deletes itself when closed. On the UI thread.
class KNSHAREDUI_EXPORT KNValueViewer : public QDialog
{
    Q_OBJECT

public:
    /// The maximum number of bytes shown; the whole value can be saved.
    static constexpr qsizetype LargestShown = 1024 * 1024;

    /// Shows a value of the result set; `storedRow` is the stored row number.
    KNValueViewer(KNDatabaseResultSetPtr result, qsizetype storedRow, qsizetype column,
                  const QString &typeName, QWidget *parent);

    /// Adds a button that closes the viewer and edits the value.
    void addEditButton(std::function<void()> edit);
    /// The displayed text.
    QString text() const;
    QString remark() const;
    /// Type and length: "nvarchar, 3 characters, 4 bytes in UTF-8".
    QString description() const;
    /// The displayed image; null if none is displayed.
    QImage image() const;
    KNValueFindBar *findBar() const { return m_findBar; }
    /// Whether the value is being prepared.
    bool isLoading() const { return m_isLoading; }

public Q_SLOTS:
    void saveToFile();
    /// Copies the displayed image, or the whole value as text.
    void copyValue();

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void arrange();
    void choose(int form);
    void prepareImage();
    void showImage(const KNValueImage &image);
    void measure();
    void setRemarks(const QStringList &remarks);
    void prepare(std::optional<KNValueText::Form> form);
    void showText(KNValueText::Form form, const QString &text, bool linesWereBroken);
    void writeTo(const QString &path);
    void paintEditor();

    const KNDatabaseResultSetPtr m_result;
    const qsizetype m_row;
    const qsizetype m_column;
    KNValue m_value; ///< the displayed part
    qsizetype m_byteCount = 0;
    QByteArray m_imageFormat; ///< empty if the value is not an image
    QString m_typeName;
    bool m_isLoading = false;
    int m_generation = 0; ///< of the form requested last
    QComboBox *m_forms;
    QLabel *m_description;
    QLabel *m_remark;
    QStackedWidget *m_pages; ///< the editor and the image
    QsciScintilla *m_editor;
    QLabel *m_image;
    KNValueFindBar *m_findBar;
    QPushButton *m_find; ///< for text only
    QDialogButtonBox *m_buttons;
};
