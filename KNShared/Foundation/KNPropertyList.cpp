#include "Foundation/KNPropertyList.h"

#include "Foundation/KNFormat.h"

#include <QFile>
#include <QXmlStreamReader>

#include <optional>

namespace {

using KNPropertyList::Problem;

KNError problem(Problem code, const QString &description)
{
    return KNError(QStringLiteral("com.quorvex.vantor.propertyList"), static_cast<int>(code), description);
}

/// Returns the contents of a file; nothing and an error if it cannot be read.
std::optional<QByteArray> contents(const QString &path, KNError *error)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray data = file.readAll();
        if (file.error() == QFile::NoError)
            return data;
    }
    *error = problem(Problem::Unreadable,
                     KNFormat("The property list \"%@\" cannot be read: %@", path, file.errorString()));
    return std::nullopt;
}

/// Returns the text of the element `name` at the reader's position; any other element is a reader error.
QString readText(QXmlStreamReader *reader, QLatin1String name)
{
    if (reader->name() != name) {
        reader->raiseError(
            KNFormat("expected <%@> and found <%@>", QString(name), reader->name().toString()));
        return {};
    }
    const QString text = reader->readElementText();
    return text.isNull() ? QStringLiteral("") : text;
}

void readValue(QXmlStreamReader *reader, QStringList *strings)
{
    strings->append(readText(reader, QLatin1String("string")));
}

void readValue(QXmlStreamReader *reader, QHash<QString, QString> *dictionary)
{
    const QString key = readText(reader, QLatin1String("key"));
    if (reader->hasError())
        return;
    if (dictionary->contains(key))
        reader->raiseError(KNFormat("the key \"%@\" occurs twice", key));
    else if (!reader->readNextStartElement())
        reader->raiseError(KNFormat("the key \"%@\" has no value", key));
    else
        dictionary->insert(key, readText(reader, QLatin1String("string")));
}

QLatin1String rootName(const QStringList &)
{
    return QLatin1String("array");
}

QLatin1String rootName(const QHash<QString, QString> &)
{
    return QLatin1String("dict");
}

template <typename Container>
Container read(const QByteArray &data, const QString &source, KNError *error)
{
    error->clear();
    QXmlStreamReader reader(data);
    Container container;
    if (reader.readNextStartElement() && reader.name() != QLatin1String("plist"))
        reader.raiseError(KNFormat("<%@> is no property list", reader.name().toString()));
    if (!reader.hasError() && (!reader.readNextStartElement() || reader.name() != rootName(container)))
        reader.raiseError(KNFormat("the property list holds no <%@>", QString(rootName(container))));
    while (!reader.hasError() && reader.readNextStartElement())
        readValue(&reader, &container);
    if (!reader.hasError() && reader.readNextStartElement())
        reader.raiseError(QStringLiteral("the property list holds more than one value"));
    while (!reader.atEnd())
        reader.readNext(); // content after the property list must be well-formed, too

    if (!reader.hasError())
        return container;
    const Problem code =
        reader.error() == QXmlStreamReader::CustomError ? Problem::UnexpectedShape : Problem::Malformed;
    *error = problem(code, KNFormat("%@, line %lld: %@", source, reader.lineNumber(), reader.errorString()));
    return {};
}

template <typename Container>
Container readFile(const QString &path, KNError *error)
{
    const auto data = contents(path, error);
    return data ? read<Container>(*data, path, error) : Container();
}

const QString UnnamedSource = QStringLiteral("Property list");

} // namespace

QStringList KNPropertyList::stringList(const QString &path, KNError *error)
{
    return readFile<QStringList>(path, error);
}

QStringList KNPropertyList::stringList(const QByteArray &data, KNError *error)
{
    return read<QStringList>(data, UnnamedSource, error);
}

QHash<QString, QString> KNPropertyList::stringDictionary(const QString &path, KNError *error)
{
    return readFile<QHash<QString, QString>>(path, error);
}

QHash<QString, QString> KNPropertyList::stringDictionary(const QByteArray &data, KNError *error)
{
    return read<QHash<QString, QString>>(data, UnnamedSource, error);
}
