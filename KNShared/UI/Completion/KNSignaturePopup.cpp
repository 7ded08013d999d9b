#include "UI/Completion/KNSignaturePopup.h"

#include <QAccessible>
#include <QPainter>
#include <QScreen>

#include <cmath>

namespace {

constexpr int Margin = 6;
constexpr int MaximumWidth = 620;
constexpr qsizetype LongestText = 2'000; ///< names of parameters come from a server

QColor faded(QColor colour, float alpha)
{
    colour.setAlphaF(alpha);
    return colour;
}

/// The width of the longest line, without the room that is left in it.
qreal widthOf(const QTextLayout &layout)
{
    qreal width = 0;
    for (int line = 0; line < layout.lineCount(); ++line)
        width = std::max(width, layout.lineAt(line).naturalTextWidth());
    return width;
}

} // namespace

KNSignaturePopup::KNSignaturePopup(QWidget *parent)
    : QWidget(parent)
{
    setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::NoFocus);
}

void KNSignaturePopup::showSignature(const KNSignature &signature, qsizetype parameter,
                                     const QRect &globalLine)
{
    m_signature = signature;
    m_parameter = parameter < signature.parameters.size() ? parameter : -1;
    setPalette(parentWidget()->palette());
    m_head.clearFormats();
    qreal height = layOut(&m_head, signature.text.left(LongestText), Margin);
    if (m_parameter >= 0) {
        QTextLayout::FormatRange range;
        range.start = int(signature.parameters[m_parameter].location);
        range.length = int(signature.parameters[m_parameter].length);
        range.format.setFontWeight(QFont::Bold);
        range.format.setForeground(palette().color(QPalette::Link));
        m_head.setFormats({range});
        height = layOut(&m_head, m_head.text(), Margin);
    }
    if (!signature.details.isEmpty())
        height = layOut(&m_details, signature.details, height + Margin / 2.0);
    else
        m_details.setText(QString());
    const qreal width = std::max(widthOf(m_head), signature.details.isEmpty() ? 0 : widthOf(m_details));
    setAccessibleName(signature.text);
    setAccessibleDescription(markedParameter() + u'\n' + signature.details);
    place(QSize(int(std::ceil(width)) + 2 * Margin, int(std::ceil(height)) + Margin), globalLine);
    update();
    show();
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
}

QString KNSignaturePopup::markedParameter() const
{
    if (m_parameter < 0)
        return QString();
    const KNRange range = m_signature.parameters[m_parameter];
    return m_signature.text.mid(range.location, range.length);
}

/// Breaks a text into lines below `top`. Returns their lower end.
qreal KNSignaturePopup::layOut(QTextLayout *layout, const QString &text, qreal top)
{
    layout->setFont(font());
    layout->setText(text);
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        line.setLineWidth(MaximumWidth - 2 * Margin);
        line.setPosition(QPointF(Margin, top));
        top += line.height();
    }
    layout->endLayout();
    return top;
}

void KNSignaturePopup::place(const QSize &size, const QRect &globalLine)
{
    const QRect available = screen()->availableGeometry();
    QPoint position = globalLine.topLeft() - QPoint(0, size.height() + 2);
    if (position.y() < available.top())
        position.setY(globalLine.bottom() + 2);
    position.setX(std::clamp(position.x(), available.left(),
                             std::max(available.left(), available.right() - size.width())));
    setGeometry(QRect(position, size));
}

void KNSignaturePopup::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor text = palette().color(QPalette::Text);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    painter.setPen(faded(text, 0.4F));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    painter.setPen(text);
    m_head.draw(&painter, QPointF());
    painter.setPen(faded(text, 0.7F));
    m_details.draw(&painter, QPointF());
}
