#include "Implementations/MSSQLBytesWritten.h"

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>

quint64 MSSQLBytesWritten(int socket)
{
    tcp_info info = {};
    socklen_t size = sizeof info;
    if (getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size) != 0)
        return 0;
    return info.tcpi_bytes_sent - info.tcpi_bytes_retrans + info.tcpi_notsent_bytes;
}
