#include "Desktop/Preferences/PreferencesDialog.h"
#include "Foundation/KNUserDefaults.h"
#include "Support/PrintQt.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// The control that a label names.
template <typename Control>
Control *control(const QDialog &dialog, const char *label)
{
    for (const QLabel *const found : dialog.findChildren<QLabel *>()) {
        if (found->text().remove(QLatin1Char('&')) == QLatin1String(label))
            return qobject_cast<Control *>(found->buddy());
    }
    return nullptr;
}

} // namespace

TEST(PreferencesDialog, SavesChangesOnAccept)
{
    KNPreferences::defaults().save();
    PreferencesDialog dialog;
    control<QSpinBox>(dialog, "Tab width:")->setValue(2);
    control<QLineEdit>(dialog, "Show NULL as:")->setText(QStringLiteral("(null)"));
    control<QComboBox>(dialog, "Appearance:")->setCurrentIndex(2);
    for (QCheckBox *const box : dialog.findChildren<QCheckBox *>()) {
        if (box->text().contains(QStringLiteral("after a batch with an error")))
            box->click();
    }
    EXPECT_EQ(KNPreferences::current().tabWidth, 4);
    dialog.accept();
    EXPECT_TRUE(KNPreferences::current().continuesAfterError);
    EXPECT_EQ(KNPreferences::current().tabWidth, 2);
    EXPECT_EQ(KNPreferences::current().nullText, QStringLiteral("(null)"));
    EXPECT_EQ(KNPreferences::current().theme, KNPreferences::Theme::Dark);
}

TEST(PreferencesDialog, SavesHowTextsAreCheckedAndFormatted)
{
    KNPreferences::defaults().save();
    PreferencesDialog dialog;
    control<QComboBox>(dialog, "Keywords:")->setCurrentIndex(2);
    control<QSpinBox>(dialog, "Indentation:")->setValue(2);
    control<QSpinBox>(dialog, "Line length:")->setValue(120);
    control<QComboBox>(dialog, "Accept names by:")->setCurrentIndex(1);
    for (QCheckBox *const box : dialog.findChildren<QCheckBox *>()) {
        const QString text = box->text().remove(QLatin1Char('&'));
        if (text == QStringLiteral("Commas at the beginning of lines") ||
            text == QStringLiteral("Check the syntax while typing") ||
            text == QStringLiteral("Close brackets and quotes"))
            box->click();
    }
    dialog.accept();
    const KNPreferences saved = KNPreferences::current();
    EXPECT_TRUE(saved.checksWhileTyping);
    EXPECT_FALSE(saved.closesPairs);
    EXPECT_EQ(saved.completionKeys, KNPreferences::CompletionKeys::Tab);
    EXPECT_EQ(saved.formatStyle, (KNSQLFormatStyle{.keywordCase = KNSQLFormatStyle::KeywordCase::Lower,
                                                   .hasLeadingCommas = true,
                                                   .indent = 2,
                                                   .width = 120}));
    KNPreferences::defaults().save();
}

TEST(PreferencesDialog, ChangesNothingWhenItIsCancelled)
{
    KNPreferences::defaults().save();
    PreferencesDialog dialog;
    control<QSpinBox>(dialog, "Rows per result:")->setValue(500);
    dialog.reject();
    EXPECT_EQ(KNPreferences::current(), KNPreferences::defaults());
}

TEST(PreferencesDialog, BringsTheDefaultsBack)
{
    KNPreferences changed = KNPreferences::defaults();
    changed.rowLimit = 7;
    changed.nullText.clear();
    changed.save();
    PreferencesDialog dialog;
    dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::RestoreDefaults)->click();
    dialog.accept();
    EXPECT_EQ(KNPreferences::current().rowLimit, 0);
    EXPECT_EQ(KNPreferences::current().nullText, QStringLiteral("NULL"));
    EXPECT_EQ(KNPreferences::current().editorFont.pointSize(),
              KNPreferences::defaults().editorFont.pointSize());
}

TEST(PreferencesDialog, HoldsThePreferencesOfTheConnector)
{
    const QString key = QStringLiteral("PreferencesDialogTestKey");
    KNUserDefaults &defaults = *KNUserDefaults::standardUserDefaults();
    const KNConnectorPreferences connector = {
        QStringLiteral("Test Server"),
        {{key, QStringLiteral("&Use it"), QStringLiteral("It is used."), false}}};
    const auto box = [](const QDialog &dialog) {
        for (QCheckBox *const found : dialog.findChildren<QCheckBox *>()) {
            if (found->text() == QLatin1String("&Use it"))
                return found;
        }
        return static_cast<QCheckBox *>(nullptr);
    };
    {
        PreferencesDialog dialog(connector);
        ASSERT_NE(box(dialog), nullptr);
        EXPECT_EQ(box(dialog)->toolTip(), QStringLiteral("It is used."));
        EXPECT_FALSE(box(dialog)->isChecked());
        box(dialog)->setChecked(true);
        dialog.reject();
        EXPECT_FALSE(defaults.boolForKey(key));
    }
    {
        PreferencesDialog dialog(connector);
        box(dialog)->setChecked(true);
        dialog.accept();
        EXPECT_TRUE(defaults.boolForKey(key));
    }
    PreferencesDialog dialog(connector);
    EXPECT_TRUE(box(dialog)->isChecked());
    dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::RestoreDefaults)->click();
    EXPECT_FALSE(box(dialog)->isChecked());
    dialog.accept();
    EXPECT_FALSE(defaults.boolForKey(key, true));
}

TEST(PreferencesDialog, HasNoGroupForAConnectorWithoutPreferences)
{
    EXPECT_EQ(PreferencesDialog().findChildren<QGroupBox *>().size(), 4);
}
