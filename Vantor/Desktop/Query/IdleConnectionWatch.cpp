#include "Desktop/Query/IdleConnectionWatch.h"

#include <unistd.h>

IdleConnectionWatch::IdleConnectionWatch(int descriptor)
    : m_descriptor(descriptor)
    , m_notifier(descriptor, QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] {
        m_notifier.setEnabled(false); // it stays readable
        Q_EMIT closed();
    });
}

IdleConnectionWatch::~IdleConnectionWatch()
{
    m_notifier.setEnabled(false);
    close(m_descriptor);
}
