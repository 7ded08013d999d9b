#include "VantorMSSQL/Catalog/AnswerFile.h"

#include <QFile>

#include <stdexcept>

namespace {

const QString headMark = QStringLiteral("--- ");
const QString questionMark = QStringLiteral(" | ");

} // namespace

AnswerFile::AnswerFile(const QString &path)
    : m_path(path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    for (const QString &text : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        if (text.startsWith(headMark)) {
            const QString head = text.mid(headMark.size());
            const qsizetype bar = head.indexOf(questionMark);
            m_sections.append({head.left(bar).split(QLatin1Char(' ')),
                               bar < 0 ? QString() : head.mid(bar + questionMark.size()), QString()});
        } else if (!m_sections.isEmpty()) {
            m_sections.last().answer += text + QLatin1Char('\n');
        }
    }
    for (Section &section : m_sections)
        section.answer = section.answer.trimmed();
}

QString AnswerFile::answer(const QString &server, const QString &question) const
{
    for (const Section &section : m_sections) {
        if (section.servers.contains(server) && section.question == question)
            return section.answer.isNull() ? QLatin1String("") : section.answer;
    }
    return {};
}

QStringList AnswerFile::questions(const QString &server) const
{
    QStringList found;
    for (const Section &section : m_sections) {
        if (section.servers.contains(server))
            found.append(section.question);
    }
    return found;
}

void AnswerFile::renew(const QString &server, const QList<std::pair<QString, QString>> &answers)
{
    for (Section &section : m_sections)
        section.servers.removeAll(server);
    m_sections.removeIf([](const Section &section) { return section.servers.isEmpty(); });
    for (const auto &[question, answer] : answers)
        add(server, question, answer);

    QString text;
    for (const Section &section : std::as_const(m_sections)) {
        text += headMark + section.servers.join(QLatin1Char(' '));
        text += section.question.isEmpty() ? QString() : questionMark + section.question;
        text += QLatin1Char('\n') + section.answer + QLatin1String("\n\n");
    }
    QFile file(m_path);
    const QByteArray bytes = text.trimmed().toUtf8() + '\n';
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + m_path.toStdString());
}

void AnswerFile::add(const QString &server, const QString &question, const QString &answer)
{
    qsizetype place = m_sections.size();
    for (qsizetype i = 0; i < m_sections.size(); ++i) {
        Section &section = m_sections[i];
        if (section.question != question)
            continue;
        if (section.answer == answer) {
            section.servers.append(server);
            section.servers.sort();
            return;
        }
        place = i + 1;
    }
    m_sections.insert(place, {{server}, question, answer});
}
