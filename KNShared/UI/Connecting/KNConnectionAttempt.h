#pragma once

#include "Database/VantorDatabaseClient.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

class QWidget;

/// One attempt to log in, in the background. It asks the questions that a failure raises, and connects again
/// when the user's answer allows it. The session of a successful attempt is kept in the pool, so that the
/// windows of this connection begin with it. On the UI thread; destroying an attempt cancels it.
class KNSHAREDUI_EXPORT KNConnectionAttempt : public QObject
{
    Q_OBJECT

public:
    /// Asks the server for a text, in the background.
    using Inquiry = std::function<QString(VantorDatabaseClient &client, KNError *error)>;

    /// Questions are asked over `window`, which is the parent. The settings may change by the answers.
    KNConnectionAttempt(const VantorDBCPtr &details, QWidget *window);
    ~KNConnectionAttempt() override;

    /// Connects, and runs `inquiry` with the connected client if it is not empty. Call once.
    void start(const Inquiry &inquiry = {});

    const VantorDBCPtr &details() const { return m_details; }

Q_SIGNALS:
    /// `answer` is what the inquiry returned.
    void succeeded(const QString &answer);
    void failed(const KNError &error);

private:
    struct Work;

    void connectInBackground();
    void finish(const QString &answer, const KNError &error);

    const VantorDBCPtr m_details;
    QWidget *const m_window;
    Inquiry m_inquiry;
    std::shared_ptr<Work> m_work; ///< null while no login runs
};
