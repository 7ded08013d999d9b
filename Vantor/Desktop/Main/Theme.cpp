#include "Desktop/Main/Theme.h"

#include "Desktop/Main/ProgramStyle.h"
#include "Foundation/KNDispatch.h"
#include "UI/KNPreferences.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QPointer>
#include <QToolTip>

namespace {

// The desktop's setting is read through its portal, which every desktop supports.
const QString Service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString Path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString Interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString Appearance = QStringLiteral("org.freedesktop.appearance");
const QString ColourScheme = QStringLiteral("color-scheme");

struct Colours
{
    QColor window, base, alternate, text, button, highlight, highlightedText, link, placeholder, disabled;
};

QPalette paletteOf(const Colours &colours)
{
    QPalette palette(colours.button, colours.window);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, colours.text);
    palette.setColor(QPalette::Base, colours.base);
    palette.setColor(QPalette::AlternateBase, colours.alternate);
    palette.setColor(QPalette::ToolTipBase, colours.alternate);
    palette.setColor(QPalette::Highlight, colours.highlight);
    palette.setColor(QPalette::HighlightedText, colours.highlightedText);
    palette.setColor(QPalette::Link, colours.link);
    palette.setColor(QPalette::PlaceholderText, colours.placeholder);
    palette.setColor(QPalette::BrightText, Qt::white);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText})
        palette.setColor(QPalette::Disabled, role, colours.disabled);
    palette.setColor(QPalette::Disabled, QPalette::Base, colours.window); // a field that takes no text
    return palette;
}

} // namespace

Theme::Theme(QObject *parent)
    : QObject(parent)
{
    QApplication::setStyle(new ProgramStyle);
    m_preferencesChanged = KNNotificationCenter::defaultCenter()->addObserver(
        KNPreferences::ChangedNotificationName,
        [self = QPointer(this)](const QString &, const QVariantMap &) {
            KNDispatch::mainQueue([self] {
                if (self)
                    self->apply();
            });
        });
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(Service, Path, Interface, QStringLiteral("SettingChanged"), this,
                SLOT(desktopChanged(QString, QString, QDBusVariant)));
    QDBusMessage read = QDBusMessage::createMethodCall(Service, Path, Interface, QStringLiteral("Read"));
    read.setArguments({Appearance, ColourScheme});
    auto *const watcher = new QDBusPendingCallWatcher(bus.asyncCall(read), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isValid())
            setDesktopScheme(reply.value().variant());
        watcher->deleteLater();
    });
    apply();
}

void Theme::desktopChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    if (group == Appearance && key == ColourScheme)
        setDesktopScheme(value.variant());
}

void Theme::setDesktopScheme(const QVariant &value)
{
    constexpr uint PrefersDark = 1;
    // Some portals wrap the value twice.
    const QVariant inner = value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
    m_isDesktopDark = inner.toUInt() == PrefersDark;
    apply();
}

void Theme::apply()
{
    const auto theme = KNPreferences::current().theme;
    const bool isDark = theme == KNPreferences::Theme::Dark ||
                        (theme == KNPreferences::Theme::FollowsDesktop && m_isDesktopDark);
    const QPalette palette = isDark ? darkPalette() : lightPalette();
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
}

QPalette Theme::lightPalette()
{
    return paletteOf({.window = QColor(0xf3, 0xf4, 0xf6),
                      .base = Qt::white,
                      .alternate = QColor(0xf7, 0xf8, 0xfa),
                      .text = QColor(0x1d, 0x21, 0x29),
                      .button = QColor(0xf0, 0xf1, 0xf4),
                      .highlight = QColor(0x2f, 0x6f, 0xc4),
                      .highlightedText = Qt::white,
                      .link = QColor(0x1c, 0x5d, 0xb8),
                      .placeholder = QColor(0x6a, 0x72, 0x80),
                      .disabled = QColor(0x9a, 0xa1, 0xad)});
}

QPalette Theme::darkPalette()
{
    return paletteOf({.window = QColor(0x26, 0x29, 0x2f),
                      .base = QColor(0x1c, 0x1e, 0x23),
                      .alternate = QColor(0x22, 0x25, 0x2b),
                      .text = QColor(0xe3, 0xe6, 0xec),
                      .button = QColor(0x31, 0x35, 0x3d),
                      .highlight = QColor(0x2c, 0x63, 0xb0),
                      .highlightedText = Qt::white,
                      .link = QColor(0x7a, 0xb0, 0xf2),
                      .placeholder = QColor(0x95, 0x9d, 0xab),
                      .disabled = QColor(0x6c, 0x73, 0x80)});
}
