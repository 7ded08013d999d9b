#pragma once

#include <QString>

#include <memory>

class MainWindow;
class VantorDBC;

/// Takes a picture of the sessions of a server.
void showActivity(MainWindow &window, const std::shared_ptr<const VantorDBC> &settings,
                  const QString &folder);
