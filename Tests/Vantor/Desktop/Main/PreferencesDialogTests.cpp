#include "Desktop/Preferences/PreferencesDialog.h"
#include "Support/PrintQt.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
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

TEST(PreferencesDialog, SavesWhatWasChangedWhenItIsAccepted)
{
    KNPreferences::defaults().save();
    PreferencesDialog dialog;
    control<QSpinBox>(dialog, "Tab width:")->setValue(2);
    control<QLineEdit>(dialog, "Show NULL as:")->setText(QStringLiteral("(null)"));
    control<QComboBox>(dialog, "Appearance:")->setCurrentIndex(2);
    EXPECT_EQ(KNPreferences::current().tabWidth, 4);
    dialog.accept();
    EXPECT_EQ(KNPreferences::current().tabWidth, 2);
    EXPECT_EQ(KNPreferences::current().nullText, QStringLiteral("(null)"));
    EXPECT_EQ(KNPreferences::current().theme, KNPreferences::Theme::Dark);
}

TEST(PreferencesDialog, ChangesNothingWhenItIsCancelled)
{
    KNPreferences::defaults().save();
    PreferencesDialog dialog;
    control<QSpinBox>(dialog, "Keep of each result:")->setValue(500);
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
