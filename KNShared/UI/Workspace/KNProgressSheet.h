#pragma once

#include "UI/KNSharedUIExport.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QWidget;

/// A sheet that shows the progress of background work and blocks its window meanwhile. Destroying it closes
/// it. On the UI thread.
class KNSHAREDUI_EXPORT KNProgressSheet
{
public:
    using Factory = std::function<std::unique_ptr<KNProgressSheet>(QWidget *parent)>;

    /// Creates a sheet of the parent's window, not shown yet. It may outlive the parent.
    static std::unique_ptr<KNProgressSheet> create(QWidget *parent);
    /// Replaces the sheets that create() returns; empty restores the real ones.
    static void setFactory(Factory factory);

    virtual ~KNProgressSheet();

    virtual void setLabelString(const QString &label) = 0;
    /// From 0 to 100; empty, the default, for unknown progress.
    virtual void setPercentage(std::optional<double> percentage) = 0;
    /// Called once when the user cancels; the sheet stays open until it is ended. Without a function there is
    /// no Cancel button.
    virtual void setCancelBlock(std::function<void()> cancel) = 0;
    virtual void begin() = 0;
    virtual void end() = 0;
};
