#pragma once

#include "Foundation/KNError.h"
#include "UI/KNSharedUIExport.h"

#include <QStringList>

#include <functional>
#include <memory>

class QWidget;

/// Tells and asks the user. Nothing here waits: answers come by a call, on the UI thread, as everything.
class KNSHAREDUI_EXPORT KNAlerts
{
public:
    struct Question
    {
        QString title;
        QString text;
        QStringList buttons; ///< from left to right; the first is the one that the Return key presses
    };
    /// The index of the button, -1 when the question was dismissed.
    using Answer = std::function<void(int button)>;

    virtual ~KNAlerts();

    /// Message boxes, unless somebody has put something else in their place.
    static KNAlerts &shared();
    /// Puts `alerts` in place; null brings the message boxes back.
    static void setShared(std::unique_ptr<KNAlerts> alerts);

    virtual void showError(QWidget *parent, const KNError &error) = 0;
    virtual void showMessage(QWidget *parent, const QString &title, const QString &text) = 0;
    /// `answer` is not called once `parent` is gone.
    virtual void ask(QWidget *parent, const Question &question, Answer answer) = 0;
};
