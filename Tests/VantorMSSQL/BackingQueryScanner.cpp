#include "BackingQueryScanner.h"

namespace {

class Scanner
{
public:
    explicit Scanner(const QString &text)
        : m_text(text)
    {
    }

    BackingQueryScan run()
    {
        while (m_position < m_text.size() && m_scan.problem.isEmpty())
            step();
        if (m_scan.problem.isEmpty() && m_depth > 0)
            fail(QStringLiteral("a parenthesis is left open"));
        return m_scan;
    }

private:
    QChar at(qsizetype offset) const
    {
        const qsizetype position = m_position + offset;
        return position < m_text.size() ? m_text.at(position) : QChar();
    }

    void step()
    {
        const QChar c = at(0);
        if (c == u'\'')
            takeString();
        else if (c == u'[')
            takeName();
        else if (c == u'-' && at(1) == u'-')
            takeLineComment();
        else if (c == u'/' && at(1) == u'*')
            takeBlockComment();
        else
            takeCode(c);
    }

    void takeCode(QChar c)
    {
        if (c == u'(')
            ++m_depth;
        else if (c == u')' && --m_depth < 0)
            fail(QStringLiteral("a parenthesis is closed that was not open"));
        else if (c == u']')
            fail(QStringLiteral("a bracket is closed that was not open"));
        else if (c == u'"')
            fail(QStringLiteral("a double quote stands in code"));
        m_scan.code += c;
        ++m_position;
    }

    void takeString()
    {
        QString content;
        ++m_position;
        while (m_position < m_text.size()) {
            if (at(0) == u'\'' && at(1) != u'\'') {
                ++m_position;
                m_scan.strings += content;
                m_scan.code += u' ';
                return;
            }
            m_position += at(0) == u'\'' ? 1 : 0;
            content += at(0);
            ++m_position;
        }
        fail(QStringLiteral("a string is left open"));
    }

    void takeName()
    {
        m_scan.code += at(0);
        ++m_position;
        while (m_position < m_text.size()) {
            const bool isDoubled = at(0) == u']' && at(1) == u']';
            const bool isEnd = at(0) == u']' && !isDoubled;
            m_scan.code += m_text.mid(m_position, isDoubled ? 2 : 1);
            m_position += isDoubled ? 2 : 1;
            if (isEnd)
                return;
        }
        fail(QStringLiteral("a bracket is left open"));
    }

    void takeLineComment()
    {
        while (m_position < m_text.size() && at(0) != u'\n')
            ++m_position;
    }

    void takeBlockComment()
    {
        int depth = 0;
        while (m_position < m_text.size()) {
            if (at(0) == u'/' && at(1) == u'*') {
                ++depth;
                m_position += 2;
            } else if (at(0) == u'*' && at(1) == u'/') {
                m_position += 2;
                if (--depth == 0)
                    return;
            } else {
                ++m_position;
            }
        }
        fail(QStringLiteral("a comment is left open"));
    }

    void fail(const QString &what)
    {
        const qsizetype line = m_text.left(m_position).count(u'\n') + 1;
        m_scan.problem = QStringLiteral("%1 in line %2").arg(what, QString::number(line));
    }

    QString m_text;
    qsizetype m_position = 0;
    int m_depth = 0;
    BackingQueryScan m_scan;
};

} // namespace

BackingQueryScan scanBackingQuery(const QString &text)
{
    return Scanner(text).run();
}
