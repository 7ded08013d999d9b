#pragma once

#include <QWidget>

class KNLazyComboBox;
class KNProgressMark;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

/// The fields of the connection dialog.
class MSSQLConnectionForm : public QWidget
{
    Q_OBJECT

public:
    explicit MSSQLConnectionForm(QWidget *parent = nullptr);

    QLineEdit *const alias;
    KNLazyComboBox *const server;
    QPushButton *const browse;
    QComboBox *const authentication;
    QLineEdit *const account;
    QLineEdit *const password;
    QCheckBox *const remembersPassword;
    KNLazyComboBox *const database;
    KNProgressMark *const databaseProgress;
    QPushButton *const sshTunnel;
    QPushButton *const sessionOptions;
    QLabel *const state; ///< shows where connections are stored, and storage errors

private:
    void layOut();
    void explainAuthentication();
};
