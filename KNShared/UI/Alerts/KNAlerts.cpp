#include "UI/Alerts/KNAlerts.h"

#include "UI/Dialogs/KNWindowController.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>

namespace {

constexpr qsizetype MostLinesInABox = 15;
constexpr qsizetype LongestTextInABox = 1500; // UTF-16 units
constexpr QSize LongMessageSize(640, 400);
constexpr int NarrowestText = 40; // of a box with two texts, in characters

bool isLong(const QString &text)
{
    return text.size() > LongestTextInABox || text.count(QLatin1Char('\n')) > MostLinesInABox;
}

/// A sheet for a text that is higher than a screen, such as an error with its script. It ends with the number
/// of the button from 1, or 0.
class LongMessage : public KNWindowController
{
public:
    LongMessage(QWidget *parent, const KNAlerts::Question &question)
        : KNWindowController(parent)
    {
        auto *const heading = new QLabel(question.title);
        heading->setTextFormat(Qt::PlainText);
        heading->setWordWrap(true);
        auto *const body = new QPlainTextEdit(question.text);
        body->setReadOnly(true);
        body->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        body->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        body->setAccessibleName(question.title);
        auto *const buttons = new QDialogButtonBox;
        for (int i = 0; i < question.buttons.size(); ++i) {
            QPushButton *const button = buttons->addButton(question.buttons[i], QDialogButtonBox::ActionRole);
            button->setDefault(i == 0);
            connect(button, &QPushButton::clicked, this, [this, i] { endSheetWithReturnCode(i + 1); });
        }
        auto *const layout = new QVBoxLayout(this);
        layout->addWidget(heading);
        layout->addWidget(body, 1);
        layout->addWidget(buttons);
        resize(LongMessageSize);
        if (!question.buttons.isEmpty())
            buttons->buttons().first()->setFocus();
    }
};

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
        if (isLong(text))
            (new LongMessage(parent, {title, text, {QMessageBox::tr("OK")}}))->beginSheet({});
        else
            open(parent, QMessageBox::Information, title, text);
    }

    void ask(QWidget *parent, const Question &question, Answer answer) override
    {
        if (isLong(question.text))
            return (new LongMessage(parent, question))->beginSheet([answer = std::move(answer)](int code) {
                answer(code - 1);
            });
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
        box->setAccessibleName(box->text());
        if (!title.isEmpty())
            box->setInformativeText(text);
        // setTextFormat() does not apply to the informative text.
        for (QLabel *const label : box->findChildren<QLabel *>())
            label->setTextFormat(Qt::PlainText);
        // The informative text is wrapped at the width of the title, which may be a few words.
        if (auto *const label = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel")))
            label->setMinimumWidth(label->fontMetrics().averageCharWidth() * NarrowestText);
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
