#include "Desktop/Query/DatabaseBox.h"

#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNDispatch.h"

#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPointer>

DatabaseBox::DatabaseBox(QWidget *parent)
    : QComboBox(parent)
{
    setAccessibleName(tr("Database"));
    setToolTip(tr("The database of this tab"));
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(20);
    completer()->setCompletionMode(QCompleter::PopupCompletion);
    lineEdit()->setPlaceholderText(tr("Default database"));
    // The list would measure each of thousands of names when it opens.
    if (auto *const list = qobject_cast<QListView *>(view()))
        list->setUniformItemSizes(true);
    view()->installEventFilter(this);
    completer()->popup()->installEventFilter(this);
    connect(this, &QComboBox::activated, this, &DatabaseBox::choose);
    connect(lineEdit(), &QLineEdit::returnPressed, this, &DatabaseBox::choose);
    // A typed name that was not confirmed is not the session's database.
    connect(lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (!lineEdit()->hasFocus())
            setEditText(m_current);
    });
}

void DatabaseBox::showDatabase(const QString &name)
{
    m_current = name;
    setEditText(name);
}

void DatabaseBox::showPopup()
{
    if (m_isLoaded)
        QComboBox::showPopup();
    else
        load();
}

bool DatabaseBox::event(QEvent *event)
{
    return leavesAt(event) || QComboBox::event(event);
}

bool DatabaseBox::eventFilter(QObject *watched, QEvent *event)
{
    return leavesAt(event) || QComboBox::eventFilter(watched, event);
}

/// Escape closes the lists, drops a typed name and leaves the box, before any shortcut.
bool DatabaseBox::leavesAt(QEvent *event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (!isKey || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Escape)
        return false;
    event->accept();
    if (event->type() == QEvent::KeyPress) {
        completer()->popup()->hide();
        hidePopup();
        setEditText(m_current);
        Q_EMIT left();
    }
    return true;
}

void DatabaseBox::choose()
{
    const QString name = currentText().trimmed();
    if (!name.isEmpty() && name != m_current)
        Q_EMIT databaseChosen(name);
}

void DatabaseBox::load()
{
    if (m_isLoading || !m_details)
        return;
    m_isLoading = true;
    setCursor(Qt::BusyCursor);
    KNDispatch::globalQueue([box = QPointer(this), details = m_details->copy()] {
        KNError error;
        QStringList names;
        VantorDatabaseConnectionPool::sharedInstance()->forgetRefusals(*details);
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) { names = client.databaseNames(failure); },
            *details, &error, true);
        KNDispatch::mainQueue([box, names, error] {
            if (!box)
                return;
            box->m_isLoading = false;
            box->unsetCursor();
            if (error) {
                Q_EMIT box->loadFailed(error);
                return;
            }
            box->m_isLoaded = true;
            const QString text = box->currentText();
            box->clear();
            box->addItems(names);
            box->setCurrentIndex(static_cast<int>(names.indexOf(text)));
            box->setEditText(text);
            Q_EMIT box->loaded();
            if (box->isVisible() && box->hasFocus())
                box->QComboBox::showPopup();
        });
    });
}
