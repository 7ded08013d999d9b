#include "UI/Alerts/KNAlerts.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace {

/// A message box that Escape and the window's cross close whatever its buttons are. Closed so, none of them
/// was clicked.
class ClosableBox : public QMessageBox
{
public:
    using QMessageBox::QMessageBox;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Escape)
            reject();
        else
            QMessageBox::keyPressEvent(event);
    }
    void closeEvent(QCloseEvent *event) override { QDialog::closeEvent(event); }
};

/// The desktop's message boxes, shown as sheets of their window.
class MessageBoxes : public KNAlerts
{
public:
    void showError(QWidget *parent, const KNError &error) override
    {
        const QString suggestion = error.recoverySuggestion();
        open(parent, QMessageBox::Warning, suggestion.isEmpty() ? QString() : error.localizedDescription(),
             suggestion.isEmpty() ? error.localizedDescription() : suggestion);
    }

    void showMessage(QWidget *parent, const QString &title, const QString &text) override
    {
        open(parent, QMessageBox::Information, title, text);
    }

    void ask(QWidget *parent, const Question &question, Answer answer) override
    {
        QMessageBox *const box = make(parent, QMessageBox::Question, question.title, question.text);
        for (const QString &title : question.buttons)
            box->addButton(title, QMessageBox::ActionRole);
        const auto buttons = box->buttons();
        if (!buttons.isEmpty())
            box->setDefaultButton(qobject_cast<QPushButton *>(buttons.first()));
        QObject::connect(box, &QMessageBox::finished, parent ? parent : static_cast<QObject *>(box),
                         [box, buttons, answer = std::move(answer)] {
                             answer(static_cast<int>(buttons.indexOf(box->clickedButton())));
                         });
        box->open();
    }

private:
    static QMessageBox *make(QWidget *parent, QMessageBox::Icon icon, const QString &title,
                             const QString &text)
    {
        auto *const box = new ClosableBox(parent);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setIcon(icon);
        box->setTextInteractionFlags(Qt::TextSelectableByMouse);
        box->setText(title.isEmpty() ? text : title);
        if (!title.isEmpty())
            box->setInformativeText(text);
        // setTextFormat() does not apply to the informative text.
        for (QLabel *const label : box->findChildren<QLabel *>())
            label->setTextFormat(Qt::PlainText);
        return box;
    }

    static void open(QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text)
    {
        make(parent, icon, title, text)->open();
    }
};

std::unique_ptr<KNAlerts> &sharedAlerts()
{
    static std::unique_ptr<KNAlerts> alerts = std::make_unique<MessageBoxes>();
    return alerts;
}

} // namespace

KNAlerts::~KNAlerts() = default;

KNAlerts &KNAlerts::shared()
{
    return *sharedAlerts();
}

void KNAlerts::setShared(std::unique_ptr<KNAlerts> alerts)
{
    sharedAlerts() = alerts ? std::move(alerts) : std::make_unique<MessageBoxes>();
}
