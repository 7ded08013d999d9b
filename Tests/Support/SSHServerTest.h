#pragma once

#include "SSH/KNSSHHostKey.h"
#include "SSH/KNSSHProcess.h"
#include "SSH/KNSSHTunnelModel.h"
#include "Support/SSHServer.h"

#include <QFile>

#include <gtest/gtest.h>

#include <memory>

/// A test with an sshd of its own, which is not known yet; skipped where there is none.
class SSHServerTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const QString missing = SSHServer::whatIsMissing(); !missing.isNull())
            GTEST_SKIP() << missing.toStdString();
        m_server = std::make_unique<SSHServer>();
        KNSSHProcess::setProgram(m_server->client());
        m_model.host = QStringLiteral("127.0.0.1");
        m_model.port = m_server->port();
        m_model.keyFile = m_server->keyFile();
    }
    void TearDown() override
    {
        KNSSHProcess::setProgram(QStringLiteral("ssh"));
        QFile::remove(KNSSHHostKey::knownHostsFile());
    }

    std::unique_ptr<SSHServer> m_server; ///< null when the test is skipped
    KNSSHTunnelModel m_model;            ///< leads through the server
};
