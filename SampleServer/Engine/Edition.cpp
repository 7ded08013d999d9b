#include "Engine/Edition.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace SampleServer {

namespace {

constexpr std::string_view functionsAfter2000[] = {"DATABASE_PRINCIPAL_ID",
                                                   "DENSE_RANK",
                                                   "ERROR_LINE",
                                                   "ERROR_MESSAGE",
                                                   "ERROR_NUMBER",
                                                   "ERROR_PROCEDURE",
                                                   "ERROR_SEVERITY",
                                                   "ERROR_STATE",
                                                   "HAS_PERMS_BY_NAME",
                                                   "NTILE",
                                                   "OBJECTPROPERTYEX",
                                                   "OBJECT_DEFINITION",
                                                   "OBJECT_SCHEMA_NAME",
                                                   "ORIGINAL_LOGIN",
                                                   "RANK",
                                                   "ROW_NUMBER",
                                                   "SCHEMA_ID",
                                                   "SCHEMA_NAME",
                                                   "SWITCHOFFSET",
                                                   "SYSDATETIME",
                                                   "SYSDATETIMEOFFSET",
                                                   "SYSUTCDATETIME",
                                                   "TODATETIMEOFFSET",
                                                   "TYPE_ID",
                                                   "XACT_STATE"};

constexpr std::string_view functionsAfter2008[] = {"CHOOSE",
                                                   "CONCAT",
                                                   "DATETIME2FROMPARTS",
                                                   "DATETIMEOFFSETFROMPARTS",
                                                   "SMALLDATETIMEFROMPARTS",
                                                   "CONCAT_WS",
                                                   "DATEDIFF_BIG",
                                                   "DATEFROMPARTS",
                                                   "EOMONTH",
                                                   "FIRST_VALUE",
                                                   "FORMAT",
                                                   "GREATEST",
                                                   "IIF",
                                                   "IS_ROLEMEMBER",
                                                   "LAG",
                                                   "LAST_VALUE",
                                                   "LEAD",
                                                   "LEAST",
                                                   "STRING_AGG",
                                                   "STRING_ESCAPE",
                                                   "TRANSLATE",
                                                   "TRIM",
                                                   "TRY_CAST",
                                                   "TRY_CONVERT",
                                                   "TRY_PARSE",
                                                   "TIMEFROMPARTS",
                                                   "DATETIMEFROMPARTS",
                                                   "CURRENT_DATE",
                                                   "DATE_BUCKET",
                                                   "DATETRUNC"};

constexpr std::string_view typesAfter2000[] = {"DATE",     "DATETIME2", "DATETIMEOFFSET", "GEOGRAPHY",
                                               "GEOMETRY", "TIME",      "HIERARCHYID",    "XML"};

bool contains(std::span<const std::string_view> names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

std::string versionBannerOf(Edition edition)
{
    static const std::string stands = " \n\tVantor sample server, a stand-in for trying and testing\n\t";
    const auto banner = [](std::string_view version, std::string_view system) {
        std::string text(version);
        text += stands;
        text += system;
        return text;
    };
    switch (edition) {
    case Edition::Sql2000:
        return banner("Microsoft SQL Server  2000 - 8.00.194 (Intel X86)",
                      "Developer Edition on Windows NT 5.0\n");
    case Edition::Sql2008:
        return banner("Microsoft SQL Server 2008 (RTM) - 10.0.1600.22 (X64)",
                      "Developer Edition (64-bit) on Windows NT 6.0 <X64>\n");
    case Edition::Azure:
        return banner("Microsoft SQL Azure (RTM) - 12.0.2000.8", {});
    case Edition::Sql2022:
        break;
    }
    return banner("Microsoft SQL Server 2022 (RTM) - 16.0.1000.6 (X64)",
                  "Developer Edition (64-bit) on Linux");
}

bool hasFunction(Edition edition, std::string_view name)
{
    if (edition >= Edition::Sql2022)
        return true;
    return !contains(functionsAfter2008, name) &&
           (edition != Edition::Sql2000 || !contains(functionsAfter2000, name));
}

bool hasType(Edition edition, std::string_view name)
{
    return edition != Edition::Sql2000 || !contains(typesAfter2000, name);
}

} // namespace SampleServer
