#include "Connector/KNConnectorLoader.h"
#include "Connector/KNConnectorPlugin.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Main/MainWindowActions.h"
#include "Desktop/Main/RecentFiles.h"
#include "Desktop/Preferences/PreferencesDialog.h"
#include "Desktop/Preferences/ShortcutsDialog.h"
#include "Desktop/Session/QueryHistoryDialog.h"
#include "Desktop/Start/StartWindow.h"
#include "QueryLoader/KNStatementPair.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/Connecting/ConnectionWindowController.h"
#include "UI/Connecting/KNLoginWindowController.h"
#include "UI/Connecting/KNPasswordWindowController.h"
#include "UI/Connecting/KNSSHTunnelWindowController.h"
#include "UI/Connecting/KNSessionOptionsWindowController.h"
#include "UI/Editor/KNFindBar.h"
#include "UI/KNConnectorUserInterface.h"
#include "UI/KNPlainToolTip.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"
#include "UI/Results/KNValueViewer.h"
#include "UI/Workspace/KNProgressSheet.h"
#include "UI/Workspace/KNQueryPreview.h"
#include "UI/Workspace/KNQueryPreviewDialog.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFontComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTabBar>
#include <QTranslator>

#include <algorithm>
#include <memory>

namespace TranslationTests {

namespace {

const QString Mark = QStringLiteral("¤");

/// Marks every text that goes through a translation.
class PseudoTranslator : public QTranslator
{
public:
    QString translate(const char *, const char *sourceText, const char *, int) const override
    {
        return Mark + QString::fromUtf8(sourceText);
    }
    bool isEmpty() const override { return false; }
};

/// The texts of a window that a translation has not reached, each with the kind of its widget.
class UntranslatedTexts
{
public:
    /// Leaves out texts that are data, and the name and version of the server.
    explicit UntranslatedTexts(const QStringList &data)
        : m_data(data)
    {
    }

    void collect(const QWidget &window)
    {
        collectFrom(window);
        for (const QWidget *const widget : window.findChildren<QWidget *>())
            collectFrom(*widget);
        for (const QAction *const action : window.findChildren<QAction *>())
            add(*action, action->text());
    }
    QStringList texts() const { return m_texts; }

private:
    void collectFrom(const QWidget &widget)
    {
        if (qobject_cast<const QMenu *>(widget.parentWidget()))
            return;
        add(widget, widget.accessibleName());
        add(widget, widget.accessibleDescription());
        add(widget, widget.toolTip());
        if (widget.isWindow())
            add(widget, widget.windowTitle());
        if (const auto *label = qobject_cast<const QLabel *>(&widget))
            add(widget, label->text());
        if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
            add(widget, button->text());
        if (const auto *group = qobject_cast<const QGroupBox *>(&widget))
            add(widget, group->title());
        if (const auto *line = qobject_cast<const QLineEdit *>(&widget))
            add(widget, line->placeholderText());
        if (const auto *text = qobject_cast<const QPlainTextEdit *>(&widget))
            add(widget, text->placeholderText());
        if (const auto *box = qobject_cast<const QSpinBox *>(&widget)) {
            add(widget, box->suffix());
            add(widget, box->specialValueText());
        }
        collectItems(widget);
    }
    void collectItems(const QWidget &widget)
    {
        const auto *box = qobject_cast<const QComboBox *>(&widget);
        if (box && !qobject_cast<const QFontComboBox *>(box)) {
            for (int i = 0; i < box->count(); ++i)
                add(widget, box->itemText(i));
        }
        if (const auto *tabs = qobject_cast<const QTabBar *>(&widget)) {
            for (int i = 0; i < tabs->count(); ++i)
                add(widget, tabs->tabText(i));
        }
    }
    void add(const QObject &owner, const QString &text)
    {
        static const QRegularExpression words(QStringLiteral("[A-Za-z]{2}"));
        const bool isKnown = std::any_of(m_data.begin(), m_data.end(), [&](const QString &each) {
            return text == each || text == KNPlainToolTip(each);
        });
        const bool isData =
            isKnown || text.startsWith(QLatin1String("the shop")) ||
            text.contains(QLatin1String("Microsoft SQL Server 2022")); // the server's own words
        if (text.contains(Mark) || !text.contains(words) || isData)
            return;
        const QString entry =
            QString::fromLatin1(owner.metaObject()->className()) + QStringLiteral(": ") + text;
        if (!m_texts.contains(entry))
            m_texts.append(entry);
    }

    const QStringList m_data;
    QStringList m_texts;
};

class Translations : public testing::Test
{
protected:
    Translations() { QCoreApplication::installTranslator(&translator); }
    ~Translations() override
    {
        EXPECT_TRUE(WindowTesting::settle());
        QCoreApplication::removeTranslator(&translator);
    }

    PseudoTranslator translator;
    UntranslatedTexts untranslated{{QStringLiteral("shop"), QStringLiteral("sa"),
                                    QStringLiteral("SET LOCK_TIMEOUT 5000"), QStringLiteral("UTF-8"),
                                    QStringLiteral("LF")}};
};

const KNConnectorUserInterface &connector()
{
    KNError error;
    return *dynamic_cast<KNConnectorUserInterface *>(
        KNConnectorLoader::load(QStringLiteral(VANTOR_CONNECTOR), &error));
}

} // namespace

TEST_F(Translations, ReachTheMainWindow)
{
    const VantorDBCPtr details =
        DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
    details->setConnectionId(QStringLiteral("translated"));
    details->setAlias(QStringLiteral("the shop"));
    RecentFiles::clear(); // their names are data
    auto window = std::make_unique<MainWindow>(*details, &connector());
    window->setAttribute(Qt::WA_DeleteOnClose, false);
    window->show();
    QueryTab *const query = DesktopTesting::currentQuery(*window);
    query->setText(QStringLiteral("select 1 as a; select 2 as b"));
    query->run();
    ASSERT_TRUE(WindowTesting::waitFor([&] { return !query->isRunning(); }));
    query->findBar()->showReplace();
    query->resultsPane()->currentSection()->openFilter();
    EXPECT_TRUE(WindowTesting::settle());
    untranslated.collect(*window);
    EXPECT_EQ(untranslated.texts(), QStringList());
}

TEST_F(Translations, ReachPreferencesHistoryAndStartWindow)
{
    PreferencesDialog preferences(connector().preferences());
    preferences.show();
    untranslated.collect(preferences);
    ShortcutsDialog shortcuts{ShortcutList({})};
    shortcuts.show();
    untranslated.collect(shortcuts);
    QueryHistoryDialog history(QueryHistory(QStringLiteral("translated")),
                               *DesktopTesting::settingsFor(SampleServerFixture::shared()));
    history.show();
    untranslated.collect(history);
    StartWindow start(connector());
    start.show();
    EXPECT_TRUE(WindowTesting::settle());
    untranslated.collect(start);
    EXPECT_EQ(untranslated.texts(), QStringList());
}

TEST_F(Translations, ReachTheDialogsOfAConnection)
{
    QWidget parent;
    ConnectionWindowController *const dialog = connector().createConnectionWindowController(&parent);
    dialog->show();
    untranslated.collect(*dialog);
    KNPasswordWindowController password(QStringLiteral("sa"), nullptr);
    password.setAttribute(Qt::WA_DeleteOnClose, false);
    untranslated.collect(password);
    KNLoginWindowController login(*DesktopTesting::settingsFor(SampleServerFixture::shared()), true, nullptr);
    login.setAttribute(Qt::WA_DeleteOnClose, false);
    untranslated.collect(login);
    const KNSSHTunnelModel noTunnel;
    auto *const tunnel = new KNSSHTunnelWindowController(noTunnel, &parent);
    auto *const options = new KNSessionOptionsWindowController({}, &parent);
    untranslated.collect(*tunnel);
    untranslated.collect(*options);
    EXPECT_EQ(untranslated.texts(), QStringList());
}

TEST_F(Translations, ReachPreviewsAndProgressSheets)
{
    QWidget parent;
    const VantorDBCPtr details = DesktopTesting::settingsFor(SampleServerFixture::shared());
    KNQueryPreview *const preview = KNQueryPreview::createQueryPreviewViewContoller(&parent, *details);
    preview->setTitle(Mark, Mark, Mark, Mark);
    preview->setQueryLoader(KNStatementPair{QStringLiteral("a"), QStringLiteral("b"), Mark}.loader(false));
    preview->beginSheet({});
    const auto sheet = KNProgressSheet::create(&parent);
    sheet->setCancelBlock([] {});
    untranslated.collect(parent);
    EXPECT_EQ(untranslated.texts(), QStringList());
}

} // namespace TranslationTests
