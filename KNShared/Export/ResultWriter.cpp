#include "Export/ResultWriter.h"

ResultWriter::~ResultWriter() = default;
