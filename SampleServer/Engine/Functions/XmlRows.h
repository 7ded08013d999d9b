#pragma once

#include "Types/SqlType.h"
#include "Types/Value.h"

#include <span>
#include <string>
#include <vector>

namespace SampleServer {

/// The options of FOR XML.
struct XmlShape
{
    struct Column
    {
        std::string path; ///< "a", "a/b", "@attribute", "text()"; empty for bare text
        SqlType type;
    };
    std::vector<Column> columns;
    std::string rowTag; ///< empty: no element around each row
    std::string root;   ///< empty: no element around all of them
    bool attributes = false;
};

/// Adds one row to the text.
void appendXmlRow(std::string &xml, const XmlShape &shape, std::span<const Value> values);

/// The value of the path '.' in an XML fragment: its text without tags, with entities resolved.
std::string textOfXml(std::string_view xml);

} // namespace SampleServer
