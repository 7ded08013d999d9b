#pragma once

#include "Export/ResultWriter.h"

#include <QIODevice>

#include <memory>

/// A writer for a format of the command line: "table", "csv" or "json"; nothing for another name.
std::unique_ptr<ResultWriter> createResultWriter(const QString &format, QIODevice &device);
