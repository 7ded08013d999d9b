#include "Support/RichTextSearch.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QMenu>
#include <QTabBar>
#include <QTextDocument>
#include <QToolTip>

namespace {

constexpr int MostRows = 2000;

/// Takes the texts of one window.
class Search
{
public:
    explicit Search(RichTextSearch::Places &places)
        : m_places(places)
    {
    }

    void lookAt(QWidget &widget)
    {
        const QString where = QString::fromLatin1(widget.metaObject()->className());
        decides(where + QStringLiteral(" toolTip"), widget.toolTip());
        decides(where + QStringLiteral(" whatsThis"), widget.whatsThis());
        isPlain(where + QStringLiteral(" windowTitle"), widget.windowTitle());
        for (const QAction *const action : widget.actions())
            lookAt(*action, where);
        if (const auto *label = qobject_cast<QLabel *>(&widget))
            lookAt(*label, where);
        else if (auto *tabs = qobject_cast<QTabBar *>(&widget))
            lookAt(*tabs);
        else if (auto *header = qobject_cast<QHeaderView *>(&widget))
            lookAt(*header);
        else if (auto *view = qobject_cast<QAbstractItemView *>(&widget))
            lookAt(*view);
        else if (const auto *box = qobject_cast<QComboBox *>(&widget))
            lookAt(*box->model(), {}, where);
        else if (const auto *button = qobject_cast<QAbstractButton *>(&widget))
            isPlain(where, button->text());
    }

private:
    /// A text of which Qt decides by itself whether it is HTML.
    void decides(const QString &where, const QString &text)
    {
        if (Qt::mightBeRichText(text) && text.contains(QLatin1String("<b>bold")))
            m_places.interpreted.append(where + QStringLiteral(": ") + text);
        else
            isPlain(where, shownOf(text));
    }
    void isPlain(const QString &where, const QString &text)
    {
        if (text.contains(QLatin1String("<b>bold")))
            m_places.literal.append(where);
    }
    static QString shownOf(const QString &text)
    {
        if (!Qt::mightBeRichText(text))
            return text;
        QTextDocument document;
        document.setHtml(text);
        return document.toPlainText();
    }

    void lookAt(const QAction &action, const QString &where)
    {
        QString own = action.text();
        own.remove(u'&');
        if (QString(action.toolTip()).remove(u'&') != own) // Qt shows one that was set only
            decides(where + QStringLiteral(" action's toolTip"), action.toolTip());
        decides(where + QStringLiteral(" action's whatsThis"), action.whatsThis());
        isPlain(where + QStringLiteral(" action"), action.text());
    }
    void lookAt(const QLabel &label, const QString &where)
    {
        if (label.textFormat() == Qt::PlainText)
            isPlain(where, label.text());
        else
            decides(where, label.text());
    }
    void lookAt(QTabBar &tabs)
    {
        for (int tab = 0; tab < tabs.count(); ++tab) {
            isPlain(QStringLiteral("tab"), tabs.tabText(tab));
            decides(QStringLiteral("tab's toolTip"), tabs.tabToolTip(tab));
            decides(QStringLiteral("tab's whatsThis"), tabs.tabWhatsThis(tab));
            showTip(tabs, tabs.tabRect(tab).center());
        }
    }
    void lookAt(QHeaderView &header)
    {
        if (!header.model())
            return;
        for (int section = 0; section < std::min(header.count(), MostRows); ++section) {
            for (const int role : {Qt::ToolTipRole, Qt::WhatsThisRole, Qt::StatusTipRole})
                decides(QStringLiteral("header's help"),
                        header.model()->headerData(section, header.orientation(), role).toString());
            isPlain(QStringLiteral("header"),
                    header.model()->headerData(section, header.orientation()).toString());
            const int at = header.sectionViewportPosition(section) + 2;
            showTip(*header.viewport(),
                    header.orientation() == Qt::Horizontal ? QPoint(at, 2) : QPoint(2, at));
        }
    }
    void lookAt(QAbstractItemView &view)
    {
        if (!view.model())
            return;
        const QString where = QString::fromLatin1(view.metaObject()->className());
        lookAt(*view.model(), {}, where);
        constexpr int Step = 8; // less than a row is high
        for (int y = 0; y < view.viewport()->height(); y += Step) {
            for (int x = 4; x < view.viewport()->width(); x += 60)
                showTip(*view.viewport(), QPoint(x, y));
        }
    }
    void lookAt(const QAbstractItemModel &model, const QModelIndex &parent, const QString &where)
    {
        for (int row = 0; row < std::min(model.rowCount(parent), MostRows); ++row) {
            for (int column = 0; column < model.columnCount(parent); ++column) {
                const QModelIndex index = model.index(row, column, parent);
                for (const int role : {Qt::ToolTipRole, Qt::WhatsThisRole, Qt::StatusTipRole})
                    decides(where + QStringLiteral(" item's help"), index.data(role).toString());
                isPlain(where + QStringLiteral(" item"), index.data().toString());
            }
            lookAt(model, model.index(row, 0, parent), where);
        }
    }
    /// Lets the mouse rest at a position, and looks at the tooltip that comes.
    void showTip(QWidget &widget, QPoint position)
    {
        QHelpEvent event(QEvent::ToolTip, position, widget.mapToGlobal(position));
        QApplication::sendEvent(&widget, &event);
        if (QToolTip::isVisible())
            decides(QStringLiteral("tooltip over ") +
                        QString::fromLatin1(widget.parentWidget()->metaObject()->className()),
                    QToolTip::text());
        QToolTip::hideText();
    }

    RichTextSearch::Places &m_places;
};

} // namespace

RichTextSearch::Places RichTextSearch::search(QWidget &window)
{
    Places places;
    Search search(places);
    search.lookAt(window);
    for (QWidget *const widget : window.findChildren<QWidget *>())
        search.lookAt(*widget);
    places.interpreted.removeDuplicates();
    places.literal.removeDuplicates();
    return places;
}
