#pragma once

#include "Export/DeviceWriter.h"

/// Writes the rows of one result as a JSON array of objects with column names as keys. A repeated name gets a
/// number appended, a column without a name is named after its position. Values as in JsonWriter.
class KNSHARED_EXPORT JsonObjectsWriter : public DeviceWriter
{
public:
    explicit JsonObjectsWriter(QIODevice &device)
        : DeviceWriter(device)
    {
    }

    void beginResult(const QStringList &columnNames) override;
    void writeRow(Cells cells) override;
    void endResult() override;

private:
    QByteArrayList m_keys; ///< quoted, including the colon
    bool m_isFirstRow = true;
};
