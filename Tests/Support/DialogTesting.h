#pragma once

#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QSet>

/// Checks of a dialog for keyboard and screen reader users.
namespace DialogTesting {

inline QString nameOf(QWidget *widget)
{
    const QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(widget);
    return interface ? interface->text(QAccessible::Name) : QString();
}

/// The widgets that the Tab key should reach.
inline QSet<QWidget *> reachableWidgets(QDialog &dialog)
{
    QSet<QWidget *> widgets;
    for (QWidget *const widget : dialog.findChildren<QWidget *>()) {
        const bool isPart =
            qobject_cast<QComboBox *>(widget->parent()) || qobject_cast<QAbstractSpinBox *>(widget->parent());
        const bool takesTab = (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !widget->focusProxy();
        if (widget->isVisible() && widget->isEnabled() && takesTab && !isPart && widget->window() == &dialog)
            widgets.insert(widget);
    }
    return widgets;
}

/// Walks through the dialog by Tab: each widget has a name, and none is left out.
inline void expectNamesAndTabOrder(QDialog &dialog)
{
    EXPECT_FALSE(nameOf(&dialog).isEmpty());
    EXPECT_EQ(WindowTesting::namelessWidgets(dialog), QStringList());
    QSet<QWidget *> visited;
    QStringList path;
    constexpr int MostSteps = 100;
    if (!dialog.focusWidget())
        QTest::keyClick(&dialog, Qt::Key_Tab);
    for (int step = 0; step < MostSteps && dialog.focusWidget() && !visited.contains(dialog.focusWidget());
         ++step) {
        QWidget *const focus = dialog.focusWidget();
        visited.insert(focus);
        path.append(nameOf(focus));
        EXPECT_FALSE(nameOf(focus).isEmpty()) << focus->metaObject()->className();
        QTest::keyClick(focus, Qt::Key_Tab);
    }
    for (QWidget *const widget : reachableWidgets(dialog))
        EXPECT_TRUE(visited.contains(widget))
            << widget->metaObject()->className() << ' ' << nameOf(widget).toStdString() << " is not among "
            << path.join(QStringLiteral(", ")).toStdString();
}

inline QPushButton *defaultButton(const QDialog &dialog)
{
    for (QPushButton *const button : dialog.findChildren<QPushButton *>()) {
        if (button->isDefault() && button->isVisibleTo(&dialog))
            return button;
    }
    return nullptr;
}

/// The Return key presses the button with this title; an empty one: none.
inline void expectDefaultButton(const QDialog &dialog, const QString &title)
{
    QPushButton *const button = defaultButton(dialog);
    EXPECT_EQ(button ? button->text().remove(u'&') : QString(), title);
}

/// No two mnemonics are the same, and each label's leads to its field.
inline void expectMnemonics(QDialog &dialog)
{
    QSet<QString> keys;
    const auto isNew = [&](const QString &text) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        const bool differs = key.isEmpty() || !keys.contains(key.toString());
        keys.insert(key.toString());
        return differs;
    };
    for (const QAbstractButton *const button : dialog.findChildren<QAbstractButton *>()) {
        EXPECT_TRUE(!button->isVisible() || isNew(button->text())) << button->text().toStdString();
    }
    for (QLabel *const label : dialog.findChildren<QLabel *>()) {
        const QKeySequence key = QKeySequence::mnemonic(label->text());
        if (!label->isVisible() || !label->buddy() || key.isEmpty())
            continue;
        EXPECT_TRUE(isNew(label->text())) << label->text().toStdString();
        if (!label->buddy()->isEnabled())
            continue;
        QTest::keyClick(&dialog, static_cast<Qt::Key>(key[0].key()), Qt::AltModifier);
        QWidget *const focus = dialog.focusWidget();
        EXPECT_TRUE(focus && (focus == label->buddy() || label->buddy()->isAncestorOf(focus)))
            << label->text().toStdString();
    }
}

/// Presses Escape where the focus is.
inline void pressEscape(QDialog &dialog)
{
    QTest::keyClick(dialog.focusWidget() ? dialog.focusWidget() : &dialog, Qt::Key_Escape);
}

} // namespace DialogTesting
