#include "UI/Names/KNEditorHover.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Autocomplete/KNNameDescription.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPlainToolTip.h"

#include <QHelpEvent>
#include <QToolTip>

KNEditorHover::KNEditorHover(std::shared_ptr<KNEditorLanguage> language)
    : QObject(language->editor())
    , m_language(std::move(language))
{
    m_language->editor()->viewport()->installEventFilter(this);
    m_observer = KNNotificationCenter::defaultCenter()->addObserver(
        KNAutocompleteHelper::AutoCompleteUpdatedNotificationName,
        [this](const QString &, const QVariantMap &info) {
            namesChanged(info.value(KNAutocompleteHelper::ObjectKey).toString());
        });
}

bool KNEditorHover::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ToolTip: // the pointer rests
        m_point = static_cast<QHelpEvent *>(event)->pos();
        show();
        return true;
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
    case QEvent::Leave:
        m_point.reset();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void KNEditorHover::show() const
{
    QWidget *const viewport = m_language->editor()->viewport();
    const qsizetype location = m_language->locationAt(*m_point);
    const auto reference = location < 0 ? std::nullopt : m_language->referenceAt(location);
    const QString text = reference ? KNNameDescription(*reference) : QString();
    // The tool tip closes when the pointer leaves the surroundings of its place.
    const QPoint slack(viewport->fontMetrics().averageCharWidth(), viewport->fontMetrics().height() / 2);
    QToolTip::showText(viewport->mapToGlobal(*m_point), KNPlainToolTip(text), viewport,
                       QRect(*m_point - slack, *m_point + slack));
}

/// Names that were missing when the pointer came to rest may be known now.
void KNEditorHover::namesChanged(const QString &description)
{
    if (m_point && !QToolTip::isVisible() && m_language->settings()->description() == description)
        show();
}
