#include "SQL/KNSignature.h"

namespace {

bool isFrame(QChar character)
{
    return character == u' ' || character == u'[' || character == u']';
}

void addParameter(const QString &text, qsizetype begin, qsizetype end, QList<KNRange> *parameters)
{
    while (begin < end && isFrame(text[begin]))
        ++begin;
    while (end > begin && isFrame(text[end - 1]))
        --end;
    if (begin < end)
        parameters->append({begin, end - begin});
}

} // namespace

KNSignature KNSignature::from(const QString &text, const QString &details)
{
    KNSignature signature{text, details, {}};
    const qsizetype open = text.indexOf(u'(');
    qsizetype begin = open + 1;
    int depth = 0;
    for (qsizetype index = begin; open >= 0 && index < text.size(); ++index) {
        const QChar character = text[index];
        const bool isEnd = character == u')' && depth == 0;
        if ((character == u',' && depth == 0) || isEnd) {
            addParameter(text, begin, index, &signature.parameters);
            begin = index + 1;
        }
        if (isEnd)
            break;
        depth += character == u'(' ? 1 : character == u')' ? -1 : 0;
    }
    return signature;
}

QString KNSignature::name() const
{
    const qsizetype end = text.indexOf(u'(');
    const QString path = end < 0 ? text : text.left(end);
    return path.section(u'.', 0, 0);
}

qsizetype KNSignature::parameterOf(qsizetype argument) const
{
    for (qsizetype index = 0; index < parameters.size() && index <= argument; ++index) {
        if (text.mid(parameters[index].location, parameters[index].length) == u"...")
            return index;
    }
    return argument < parameters.size() ? argument : -1;
}

qsizetype KNSignature::parameterNamed(const QString &name) const
{
    for (qsizetype index = 0; index < parameters.size(); ++index) {
        const QString parameter = text.mid(parameters[index].location, parameters[index].length);
        if (parameter.section(u' ', 0, 0).compare(name, Qt::CaseInsensitive) == 0)
            return index;
    }
    return -1;
}
