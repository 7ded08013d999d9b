#pragma once

#include "Export/DeviceWriter.h"

/// The rows of one result as a JSON array of objects, by column name. A name that occurs again gets its
/// number, a column without a name that of its place. Values as in JsonWriter.
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
    QByteArrayList m_keys; ///< quoted, with their colon
    bool m_isFirstRow = true;
};
