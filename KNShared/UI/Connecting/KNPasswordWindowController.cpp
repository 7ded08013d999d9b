#include "UI/Connecting/KNPasswordWindowController.h"

#include "Foundation/KNFormat.h"
#include "UI/Dialogs/KNPasswordField.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace {

QString withoutMnemonics(const QString &text)
{
    return QString(text).replace(u'&', QStringLiteral("&&"));
}

} // namespace

KNPasswordWindowController::KNPasswordWindowController(const Texts &texts, QWidget *parent)
    : KNWindowController(parent)
    , m_password(new KNPasswordField)
{
    setWindowTitle(texts.title);
    auto *const prompt = new QLabel(texts.prompt);
    prompt->setTextFormat(Qt::PlainText);
    prompt->setBuddy(m_password);
    m_password->setAccessibleName(texts.title);
    m_password->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    auto *const layout = new QVBoxLayout(this);
    if (!texts.reason.isEmpty()) {
        auto *const reason = new QLabel(texts.reason);
        reason->setTextFormat(Qt::PlainText);
        reason->setWordWrap(true);
        layout->addWidget(reason);
    }
    layout->addWidget(prompt);
    layout->addWidget(m_password);
    layout->addWidget(makeButtons(texts.accept));
    m_password->setFocus();
}

KNPasswordWindowController::KNPasswordWindowController(const QString &account, QWidget *parent)
    : KNPasswordWindowController(
          Texts{
              tr("Password"), KNFormat(tr("&Password of %@:"), withoutMnemonics(account)), tr("Connect"), {}},
          parent)
{
}

QString KNPasswordWindowController::password() const
{
    return m_password->text();
}
