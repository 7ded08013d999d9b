#include "UI/Rename/KNRenameField.h"

#include "UI/Editor/KNSQLColours.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>

namespace {

constexpr int RenameMargin = 4;
constexpr int LeastCharacters = 24; ///< width of the field
constexpr float FrameAlpha = 0.4F;

void colour(QLabel *label, const QColor &text)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, text);
    label->setPalette(palette);
}

} // namespace

KNRenameField::KNRenameField(QWidget *parent)
    : QFrame(parent)
    , m_field(new QLineEdit)
    , m_message(new QLabel)
{
    m_field->setAccessibleName(tr("New name"));
    m_field->setMinimumWidth(m_field->fontMetrics().averageCharWidth() * LeastCharacters);
    m_field->installEventFilter(this);
    m_message->setTextFormat(Qt::PlainText);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setAutoFillBackground(true);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(RenameMargin, RenameMargin, 2 * RenameMargin, RenameMargin);
    layout->addWidget(m_field);
    layout->addWidget(m_message);
    connect(m_field, &QLineEdit::returnPressed, this, [this] { Q_EMIT accepted(m_field->text()); });
    connect(m_field, &QLineEdit::textEdited, this, [this] {
        m_message->setText(m_places);
        colour(m_message, parentWidget()->palette().color(QPalette::WindowText));
        place();
    });
    hide();
}

void KNRenameField::open(const QString &name, qsizetype places, const QRect &line)
{
    m_line = line;
    QPalette colours = parentWidget()->palette();
    QColor frame = colours.color(QPalette::WindowText);
    frame.setAlphaF(FrameAlpha);
    colours.setColor(QPalette::WindowText, frame);
    setPalette(colours);
    m_places = places == 1 ? tr("1 place") : tr("%1 places").arg(places);
    m_field->setText(name);
    m_field->selectAll();
    m_message->setText(m_places);
    colour(m_message, parentWidget()->palette().color(QPalette::WindowText));
    place();
    show();
    m_field->setFocus(Qt::PopupFocusReason);
}

QString KNRenameField::message() const
{
    return m_message->text();
}

void KNRenameField::showProblem(const QString &problem)
{
    m_message->setText(problem);
    colour(m_message, KNSQLColours::forPalette(palette()).error);
    place();
}

/// Below the line, or above it if there is no room.
void KNRenameField::place()
{
    layout()->activate();
    adjustSize();
    const QRect available = parentWidget()->rect();
    const int below = m_line.bottom() + 2;
    const int y = below + height() <= available.height() ? below : m_line.top() - 2 - height();
    move(std::clamp(m_line.left(), 0, std::max(0, available.width() - width())), std::max(0, y));
}

/// Keeps keys that the field does not use from the text below.
void KNRenameField::keyPressEvent(QKeyEvent *event)
{
    event->accept();
}

bool KNRenameField::eventFilter(QObject *watched, QEvent *event)
{
    const bool isKey = event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress;
    if (isKey && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        event->accept(); // before shortcuts of the window
        if (event->type() == QEvent::KeyPress) {
            hide();
            Q_EMIT closed();
        }
        return true;
    }
    if (event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason)
        hide();
    return QFrame::eventFilter(watched, event);
}
