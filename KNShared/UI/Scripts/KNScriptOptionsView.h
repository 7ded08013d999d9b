#pragma once

#include "Export/KNScriptExport.h"
#include "UI/KNSharedUIExport.h"

#include <QWidget>

class QCheckBox;
class QComboBox;

/// The options of a script. One without effect beside the others is disabled, with the reason as its tool
/// tip. On the UI thread.
class KNSHAREDUI_EXPORT KNScriptOptionsView : public QWidget
{
    Q_OBJECT

public:
    explicit KNScriptOptionsView(QWidget *parent = nullptr);

    /// The name of the server's language.
    void setLanguageName(const QString &name);
    KNScriptOptions options() const;
    KNScriptTarget::Kind target() const;
    /// The box of a switch; null if it has none.
    QCheckBox *box(KNScriptOptions::Switch option) const;
    QComboBox *content() const { return m_content; }
    QComboBox *language() const { return m_language; }
    QComboBox *files() const { return m_files; }
    QCheckBox *compresses() const { return m_compresses; }

Q_SIGNALS:
    void changed();

private:
    struct Box
    {
        KNScriptOptions::Switch option;
        QCheckBox *box;
    };

    void addBox(class QVBoxLayout *layout, KNScriptOptions::Switch option, const QString &title);
    void arrange();
    void update();

    QComboBox *const m_content;
    QComboBox *const m_language;
    QComboBox *const m_files;
    QCheckBox *const m_compresses;
    QList<Box> m_boxes;
};
