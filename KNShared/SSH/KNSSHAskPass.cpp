#include "SSH/KNSSHAskPass.h"

#include "Foundation/KNFormat.h"
#include "SSH/KNSSHPassphrases.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char Script[] = R"sh(#!/bin/sh
# Questions other than for a secret cannot be answered.
[ -z "$SSH_ASKPASS_PROMPT" ] || exit 1
folder=${0%/*}
for prompt in "$folder"/prompt.*; do
    [ -f "$prompt" ] && [ "$1" = "$(cat "$prompt")" ] || continue
    number=${prompt##*.}
    mkdir "$folder/answered.$number" 2>/dev/null || exit 1
    IFS= read -r answer < "$folder/answer.$number" || exit 1
    printf '%s\n' "$answer"
    exit 0
done
printf '%s\n' "$1" > "$folder/asked"
exit 1
)sh";

/// A folder in memory if there is one.
QString parentFolder()
{
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return QDir::isAbsolutePath(folder) && QFileInfo(folder).isWritable() ? folder : QDir::tempPath();
}

bool writeFile(const QString &path, const QByteArray &content, QFile::Permissions permissions)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.setPermissions(permissions) &&
           file.write(content) == content.size();
}

} // namespace

KNSSHAskPass::KNSSHAskPass()
    : m_folder(parentFolder() + QStringLiteral("/vantor-ssh-XXXXXX"))
{
    m_isReady = m_folder.isValid() && writeFile(m_folder.filePath(QStringLiteral("ask")), Script,
                                                QFile::ReadOwner | QFile::ExeOwner);
    const QMap<QString, QString> known = KNSSHPassphrases::all();
    for (auto entry = known.begin(); m_isReady && entry != known.end(); ++entry)
        m_isReady = writeAnswer(entry.key(), entry.value());
}

KNSSHAskPass::~KNSSHAskPass()
{
    for (const int pipe : std::as_const(m_pipes))
        close(pipe);
}

bool KNSSHAskPass::writeAnswer(const QString &prompt, const QString &passphrase)
{
    const auto number = m_prompts.size();
    const QByteArray path = QFile::encodeName(m_folder.filePath(KNFormat("answer.%ld", number)));
    if (mkfifo(path.constData(), S_IRUSR | S_IWUSR) != 0)
        return false;
    // Open for both, it neither waits for a reader nor loses the text before there is one.
    const int pipe = open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (pipe < 0)
        return false;
    m_pipes.append(pipe);
    m_prompts.append(prompt);
    const QByteArray line = passphrase.toLocal8Bit() + '\n';
    return write(pipe, line.constData(), static_cast<std::size_t>(line.size())) == line.size() &&
           writeFile(m_folder.filePath(KNFormat("prompt.%ld", number)), prompt.toLocal8Bit(),
                     QFile::ReadOwner);
}

QStringList KNSSHAskPass::environment() const
{
    if (!m_isReady)
        return {};
    return {QStringLiteral("SSH_ASKPASS=") + m_folder.filePath(QStringLiteral("ask")),
            QStringLiteral("SSH_ASKPASS_REQUIRE=force")};
}

QString KNSSHAskPass::unansweredPrompt() const
{
    constexpr qint64 Longest = 1000;
    QFile file(m_folder.filePath(QStringLiteral("asked")));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QByteArray prompt = file.read(Longest);
    if (prompt.endsWith('\n'))
        prompt.chop(1);
    return QString::fromLocal8Bit(prompt);
}

QStringList KNSSHAskPass::answeredPrompts() const
{
    QStringList answered;
    for (qsizetype number = 0; number < m_prompts.size(); ++number) {
        if (QFileInfo(m_folder.filePath(KNFormat("answered.%ld", number))).isDir())
            answered.append(m_prompts[number]);
    }
    return answered;
}
