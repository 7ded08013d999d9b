#pragma once

#include "UI/KNSharedUIExport.h"

#include <QWidget>

class QLineEdit;

/// A field for the path of a file, with a button that lets the user choose it. On the UI thread.
class KNSHAREDUI_EXPORT KNFileField : public QWidget
{
    Q_OBJECT

public:
    /// `title` says what is chosen; `filters` as KNFilePanels has them.
    explicit KNFileField(const QString &title, const QStringList &filters = {}, QWidget *parent = nullptr);

    /// Empty for no file.
    QString path() const;
    void setPath(const QString &path);
    QLineEdit *lineEdit() const { return m_path; }

private:
    QLineEdit *const m_path;
};
