#pragma once

#include <QWidget>

class VantorDBC;

/// The strip above a window's content in the colour of its connection. For a production connection it says
/// so.
class ConnectionStrip : public QWidget
{
    Q_OBJECT

public:
    explicit ConnectionStrip(const VantorDBC &details, QWidget *parent = nullptr);

    /// The widget below such a strip, if the connection has a colour or is a production one.
    static QWidget *above(QWidget *widget, const VantorDBC &details);
};
