#pragma once

#include "Foundation/KNError.h"
#include "UI/KNSharedUIExport.h"

#include <QStringList>

#include <functional>
#include <memory>

class QWidget;

/// Shows messages and questions to the user. No function blocks; answers are passed to callbacks. On the UI
/// thread.
class KNSHAREDUI_EXPORT KNAlerts
{
public:
    struct Question
    {
        QString title;
        QString text;
        QStringList buttons; ///< from left to right; the first is the default button (Return key)
    };
    /// Receives the index of the button; -1 if the question was dismissed.
    using Answer = std::function<void(int button)>;

    virtual ~KNAlerts();

    /// The message boxes, unless setShared() replaced them.
    static KNAlerts &shared();
    /// Replaces the shared object; null restores the message boxes.
    static void setShared(std::unique_ptr<KNAlerts> alerts);

    virtual void showError(QWidget *parent, const KNError &error) = 0;
    virtual void showMessage(QWidget *parent, const QString &title, const QString &text) = 0;
    /// Asks a question. `answer` is not called after `parent` is destroyed.
    virtual void ask(QWidget *parent, const Question &question, Answer answer) = 0;
};
