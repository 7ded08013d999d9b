#include "Desktop/Main/EncryptionMark.h"

#include "Foundation/KNFormat.h"
#include "UI/Icons/KNIcon.h"
#include "UI/KNPlainToolTip.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>

namespace {

struct Description
{
    QString text;
    QString toolTip;
};

Description descriptionOf(VantorEncryption encryption)
{
    switch (encryption) {
    case VantorEncryption::Verified:
        return {EncryptionMark::tr("Encrypted, verified"),
                EncryptionMark::tr("Everything is encrypted, and the server's certificate was verified.")};
    case VantorEncryption::Unverified:
        return {EncryptionMark::tr("Encrypted, not verified"),
                EncryptionMark::tr(
                    "Everything is encrypted, but the server's certificate was not verified: another "
                    "server could pretend to be this one.")};
    case VantorEncryption::LoginOnly:
        return {
            EncryptionMark::tr("Only login encrypted"),
            EncryptionMark::tr("The password was encrypted. Statements and results are sent as plain text.")};
    case VantorEncryption::None:
        return {EncryptionMark::tr("Not encrypted"),
                EncryptionMark::tr("Statements and results are sent as plain text.")};
    case VantorEncryption::Unknown:
        break;
    }
    return {};
}

} // namespace

EncryptionMark::EncryptionMark(QWidget *parent)
    : QWidget(parent)
    , m_icon(new QLabel)
    , m_text(new QLabel)
{
    m_text->setTextFormat(Qt::PlainText);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 0, 6, 0);
    layout->setSpacing(4);
    layout->addWidget(m_icon);
    layout->addWidget(m_text);
    setEncryption(VantorEncryption::Unknown, {});
}

void EncryptionMark::setEncryption(VantorEncryption encryption, const QString &tunnel)
{
    const Description description = descriptionOf(encryption);
    const QString through =
        tunnel.isEmpty() ? QString() : KNFormat(tr("\nThe connection passes an SSH tunnel to %@."), tunnel);
    m_encryption = encryption;
    m_text->setText(description.text);
    setToolTip(KNPlainToolTip(description.toolTip + through));
    m_text->setAccessibleName(KNFormat(tr("Encryption: %@"), description.text));
    m_text->setAccessibleDescription(description.toolTip + through);
    showIcon();
    setVisible(encryption != VantorEncryption::Unknown);
}

QString EncryptionMark::text() const
{
    return m_text->text();
}

void EncryptionMark::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        showIcon();
}

void EncryptionMark::showIcon()
{
    const bool isClosed =
        m_encryption == VantorEncryption::Verified || m_encryption == VantorEncryption::Unverified;
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    m_icon->setPixmap(KNIcon::named(isClosed ? QStringLiteral("lock-closed") : QStringLiteral("lock-open"))
                          .pixmap(QSize(size, size), devicePixelRatio()));
}
