#include "Database/KNCellText.h"
#include "Database/KNRowReader.h"
#include "Fuzz/Fuzzer.h"
#include "Implementations/MSSQLColumnValue.h"

#include <vector>

/// Any bytes of any type are one value of the row, which can be shown.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 3)
        return 0;
    MSSQLColumn column;
    column.type = data[0];
    column.precision = data[1];
    column.scale = data[2];
    const std::vector<std::uint8_t> bytes(data + 3, data + size); // a sanitizer watches its end
    KNRowStore rows;
    rows.setColumnCount(1);
    rows.beginRow();
    appendColumnValue(rows, column, bytes.data(), static_cast<int>(bytes.size()));
    rows.endRow();
    rows.publish();
    require(rows.rowCount() == 1 && rows.row(0).size() == 1);
    const KNValue value = rows.row(0).constFirst();
    require(value.isNull() || !value.displayText().isNull());
    const KNRowCell cell = KNRowReader(rows).cell(0, 0);
    KNByteBuffer text;
    KNCellText::append(text, cell);
    const QByteArray shown(text.data(), static_cast<qsizetype>(text.size()));
    require(shown == cell.storedValue().displayText().toUtf8());
    return 0;
}
