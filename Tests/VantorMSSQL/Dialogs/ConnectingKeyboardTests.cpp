#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingStore.h"
#include "Support/WindowTesting.h"
#include "UI/Connecting/KNLoginWindowController.h"
#include "UI/Connecting/KNPasswordWindowController.h"
#include "UI/Connecting/KNSSHTunnelWindowController.h"
#include "UI/Connecting/KNSessionOptionsWindowController.h"
#include "UI/Dialogs/MSSQLBrowseServersWindowController/MSSQLBrowseServersWindowController.h"
#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionWindowController.h"
#include "UI/Dialogs/MSSQLFederationMemberConnectionWindowController/MSSQLFederationMemberConnectionWindowController.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSet>

namespace {

/// How each dialog for connecting is opened.
struct Opening
{
    const char *name;
    std::function<KNWindowController *(QWidget *parent)> make;
    const char *defaultButton;
};

std::vector<Opening> openings()
{
    return {
        {"connection", [](QWidget *parent) { return new MSSQLConnectionWindowController(parent); }, "Save"},
        {"servers", [](QWidget *parent) { return new MSSQLBrowseServersWindowController(parent); }, "Choose"},
        {"federation",
         [](QWidget *parent) {
             MSSQLDatabaseConnectionDetails settings;
             settings.setHost(QStringLiteral("127.0.0.1,1"));
             settings.setUsername(QStringLiteral("sa"));
             return new MSSQLFederationMemberConnectionWindowController(settings, QStringLiteral("int"),
                                                                        parent);
         },
         "Connect"},
        {"tunnel",
         [](QWidget *parent) {
             return new KNSSHTunnelWindowController({QStringLiteral("gate"), 0, {}, {}}, parent);
         },
         "OK"},
        {"options", [](QWidget *parent) { return new KNSessionOptionsWindowController({}, parent); }, "OK"},
        {"password",
         [](QWidget *parent) { return new KNPasswordWindowController(QStringLiteral("sa at db"), parent); },
         "Connect"},
        {"login",
         [](QWidget *parent) {
             MSSQLDatabaseConnectionDetails settings;
             settings.setHost(QStringLiteral("db"));
             settings.setUsername(QStringLiteral("sa"));
             return new KNLoginWindowController(settings, true, parent);
         },
         "Connect"},
    };
}

class ConnectingDialogs : public testing::TestWithParam<Opening>
{
protected:
    void SetUp() override
    {
        MSSQLRecentConnection::forgetList();
        m_window.show();
        m_dialog = GetParam().make(&m_window);
        m_dialog->beginSheet([this](int code) { m_result = code; });
        m_dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog));
    }
    void TearDown() override
    {
        delete m_dialog;
        EXPECT_TRUE(WindowTesting::settle());
        MSSQLRecentConnection::forgetList();
        KNKeyValueStore::setShared(nullptr);
    }
    static QString nameOf(QWidget *widget)
    {
        const QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(widget);
        return interface ? interface->text(QAccessible::Name) : QString();
    }
    /// The widgets that the Tab key should reach.
    QSet<QWidget *> reachable() const
    {
        QSet<QWidget *> widgets;
        for (QWidget *const widget : m_dialog->findChildren<QWidget *>()) {
            const bool isPart = qobject_cast<QComboBox *>(widget->parent()) ||
                                qobject_cast<QAbstractSpinBox *>(widget->parent());
            const bool takesTab =
                (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !widget->focusProxy();
            if (widget->isVisible() && widget->isEnabled() && takesTab && !isPart &&
                widget->window() == m_dialog)
                widgets.insert(widget);
        }
        return widgets;
    }
    QPushButton *defaultButton() const
    {
        for (QPushButton *const button : m_dialog->findChildren<QPushButton *>()) {
            if (button->isDefault())
                return button;
        }
        return nullptr;
    }

    RecordingAlerts &m_alerts = RecordingAlerts::install();
    const std::shared_ptr<RecordingStore> m_store = RecordingStore::install();
    QWidget m_window;
    QPointer<KNWindowController> m_dialog;
    std::optional<int> m_result;
};

} // namespace

TEST_P(ConnectingDialogs, AreNamedAndTheTabKeyReachesEveryNamedField)
{
    EXPECT_FALSE(nameOf(m_dialog).isEmpty());
    EXPECT_EQ(WindowTesting::namelessWidgets(*m_dialog), QStringList());
    QSet<QWidget *> visited;
    for (int step = 0; step < 100 && m_dialog->focusWidget() && !visited.contains(m_dialog->focusWidget());
         ++step) {
        QWidget *const focus = m_dialog->focusWidget();
        visited.insert(focus);
        EXPECT_FALSE(nameOf(focus).isEmpty()) << focus->metaObject()->className();
        QTest::keyClick(focus, Qt::Key_Tab);
    }
    for (QWidget *const widget : reachable())
        EXPECT_TRUE(visited.contains(widget))
            << widget->metaObject()->className() << ' ' << nameOf(widget).toStdString();
    EXPECT_FALSE(m_result);
}

TEST_P(ConnectingDialogs, CloseWithEscapeAndAcceptNothing)
{
    QTest::keyClick(m_dialog->focusWidget() ? m_dialog->focusWidget() : m_dialog.data(), Qt::Key_Escape);
    EXPECT_EQ(m_result, 0);
    EXPECT_TRUE(m_store->writes.empty());
    EXPECT_TRUE(m_alerts.errors.empty());
}

TEST_P(ConnectingDialogs, HaveOneDefaultButtonForTheReturnKey)
{
    ASSERT_NE(defaultButton(), nullptr);
    EXPECT_EQ(defaultButton()->text().remove(u'&'), QString::fromLatin1(GetParam().defaultButton));
    // No other button takes the Return key over because it has had the focus.
    for (QPushButton *const button : m_dialog->findChildren<QPushButton *>()) {
        EXPECT_TRUE(button == defaultButton() || !button->autoDefault()) << button->text().toStdString();
    }
}

TEST_P(ConnectingDialogs, HaveMnemonicsThatDifferAndReachTheirFields)
{
    QSet<QString> keys;
    const auto isNew = [&](const QString &text) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        const bool differs = key.isEmpty() || !keys.contains(key.toString());
        keys.insert(key.toString());
        return differs;
    };
    for (const QAbstractButton *const button : m_dialog->findChildren<QAbstractButton *>()) {
        EXPECT_TRUE(!button->isVisible() || isNew(button->text())) << button->text().toStdString();
    }
    for (QLabel *const label : m_dialog->findChildren<QLabel *>()) {
        const QKeySequence key = QKeySequence::mnemonic(label->text());
        if (!label->isVisible() || !label->buddy() || key.isEmpty())
            continue;
        EXPECT_TRUE(isNew(label->text())) << label->text().toStdString();
        if (!label->buddy()->isEnabled())
            continue;
        QTest::keyClick(m_dialog, static_cast<Qt::Key>(key[0].key()), Qt::AltModifier);
        QWidget *const focus = m_dialog->focusWidget();
        EXPECT_TRUE(focus && (focus == label->buddy() || label->buddy()->isAncestorOf(focus)))
            << label->text().toStdString();
    }
    EXPECT_FALSE(m_result);
}

INSTANTIATE_TEST_SUITE_P(All, ConnectingDialogs, testing::ValuesIn(openings()),
                         [](const testing::TestParamInfo<Opening> &opening) { return opening.param.name; });
