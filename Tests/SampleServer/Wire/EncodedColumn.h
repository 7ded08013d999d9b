#pragma once

#include "MemoryTransport.h"
#include "Wire/ResultWriter.h"

/// What the wire makes of one column of one type and of values in it.
class EncodedColumn
{
public:
    EncodedColumn(const SampleServer::SqlType &type, SampleServer::TdsVersion version, bool nullable = true)
        : m_out(m_transport)
        , m_results(m_out, version)
    {
        m_results.columns({{"c", type, nullable}});
        const std::size_t before =
            version >= SampleServer::TdsVersion::V72 ? 9 : 7; // token, count, user type, flags
        const auto bytes = takeWritten();
        m_typeInfo = hex(std::span(bytes).subspan(before, bytes.size() - before - 3)); // the name is the last
    }

    /// TYPE_INFO and, where there is one, the table name.
    const std::string &typeInfo() const { return m_typeInfo; }

    /// A whole row, token included.
    std::string row(const SampleServer::Value &value)
    {
        m_results.row({&value, 1});
        return hex(takeWritten());
    }
    /// The value's bytes in a ROW token.
    std::string value(const SampleServer::Value &value)
    {
        const std::string whole = row(value);
        return whole.starts_with("D1") ? whole.substr(std::min<std::size_t>(3, whole.size()))
                                       : "no ROW: " + whole;
    }

private:
    MemoryTransport::Bytes takeWritten()
    {
        m_out.endMessage();
        auto bytes = payloadOf(m_transport.written);
        m_transport.written.clear();
        return bytes;
    }

    MemoryTransport m_transport;
    SampleServer::PacketWriter m_out;
    SampleServer::ResultWriter m_results;
    std::string m_typeInfo;
};
