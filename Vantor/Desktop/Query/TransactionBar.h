#pragma once

#include <QWidget>

/// Shown while a transaction is open: buttons that end it. On the UI thread.
class TransactionBar : public QWidget
{
    Q_OBJECT

public:
    explicit TransactionBar(QWidget *parent = nullptr);

Q_SIGNALS:
    void commitRequested();
    void rollbackRequested();
};
