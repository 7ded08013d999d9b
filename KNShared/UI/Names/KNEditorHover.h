#pragma once

#include "Foundation/KNNotificationCenter.h"
#include "UI/Completion/KNEditorLanguage.h"

#include <QObject>
#include <QPoint>

/// Shows a tool tip about the name below the mouse pointer once that rests: the type of a column, the columns
/// of a table and the like. Nothing about unknown names. On the UI thread.
class KNSHAREDUI_EXPORT KNEditorHover : public QObject
{
    Q_OBJECT

public:
    /// The editor owns the object.
    explicit KNEditorHover(std::shared_ptr<KNEditorLanguage> language);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void show() const;
    void namesChanged(const QString &description);

    const std::shared_ptr<KNEditorLanguage> m_language;
    std::optional<QPoint> m_point; ///< of the viewport, while the pointer rests there
    KNNotificationCenter::Token m_observer;
};
