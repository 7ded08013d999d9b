#pragma once

#include <QWidget>

class KNColourBox;
class KNConnectionStoreLabel;
class KNLazyComboBox;
class KNPasswordField;
class KNProgressMark;
class QCheckBox;
class QComboBox;
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
    KNPasswordField *const password;
    QCheckBox *const remembersPassword;
    KNLazyComboBox *const database;
    KNProgressMark *const databaseProgress;
    KNLazyComboBox *const group;
    KNColourBox *const colour;
    QCheckBox *const isProduction;
    QPushButton *const sshTunnel;
    QPushButton *const sessionOptions;
    KNConnectionStoreLabel *const state; ///< shows where connections are stored, and storage errors

private:
    void layOut();
    void explainAuthentication();
};
