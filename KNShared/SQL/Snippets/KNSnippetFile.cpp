#include "SQL/Snippets/KNSnippetFile.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNPrivateFolder.h"
#include "SQL/Scope/KNSQLDialect.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QStandardPaths>

#include <optional>

namespace {

constexpr qint64 LargestFile = 8'000'000;

KNError snippetError(const QString &description)
{
    return KNError(QStringLiteral("com.quorvex.vantor.snippets"), 1, description);
}

/// The snippet of an object; nullopt if it is none.
std::optional<KNSnippet> snippetFrom(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    KNSnippet snippet{object.value(QLatin1String("name")).toString(),
                      object.value(QLatin1String("title")).toString(), QString()};
    QStringList lines;
    const QJsonArray array = object.value(QLatin1String("text")).toArray();
    for (const QJsonValue &line : array) {
        if (!line.isString() || line.toString().contains(u'\n'))
            return std::nullopt;
        lines.append(line.toString());
    }
    snippet.text = lines.join(u'\n');
    const bool isNamed =
        !snippet.name.trimmed().isEmpty() && snippet.name.size() <= KNSnippetFile::LongestName;
    const bool hasText = !snippet.text.isEmpty() && snippet.text.size() <= KNSnippetFile::LongestText;
    return isNamed && hasText ? std::optional(snippet) : std::nullopt;
}

/// Copies of the texts: several threads use those of the dialect.
QList<KNSnippet> originalsOf(const KNSQLDialect &dialect)
{
    const auto copy = [](const QString &text) { return QString(text.constData(), text.size()); };
    QList<KNSnippet> originals;
    for (const KNSnippet &snippet : dialect.snippets)
        originals.append({copy(snippet.name), copy(snippet.title), copy(snippet.text)});
    return originals;
}

QByteArray jsonOf(const QList<KNSnippet> &snippets)
{
    QJsonArray array;
    for (const KNSnippet &snippet : snippets)
        array.append(
            QJsonObject{{QStringLiteral("name"), snippet.name},
                        {QStringLiteral("title"), snippet.title},
                        {QStringLiteral("text"), QJsonArray::fromStringList(snippet.text.split(u'\n'))}});
    return QJsonDocument(array).toJson();
}

} // namespace

QList<KNSnippet> KNSnippetFile::parse(const QByteArray &json, KNError *error)
{
    error->clear();
    const auto fail = [error](const QString &reason) {
        *error = snippetError(reason);
        return QList<KNSnippet>();
    };
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(json, &problem);
    if (problem.error != QJsonParseError::NoError)
        return fail(KNFormat("It is not valid JSON at byte %d: %@.", problem.offset, problem.errorString()));
    if (!document.isArray() || document.array().size() > MostSnippets)
        return fail(KNFormat("It is not a list of at most %d snippets.", int(MostSnippets)));
    QList<KNSnippet> snippets;
    QSet<QString> names;
    const QJsonArray array = document.array();
    for (qsizetype index = 0; index < array.size(); ++index) {
        const auto snippet = snippetFrom(array[index]);
        if (!snippet)
            return fail(KNFormat("Its entry %d is not a snippet with name and text.", int(index + 1)));
        if (names.contains(snippet->name.toLower()))
            return fail(KNFormat("The name \"%@\" occurs twice.", snippet->name));
        names.insert(snippet->name.toLower());
        snippets.append(*snippet);
    }
    return snippets;
}

QString KNSnippetFile::path(const KNSQLDialect &dialect)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/vantor/snippets-%1.json").arg(dialect.name);
}

QList<KNSnippet> KNSnippetFile::read(const KNSQLDialect &dialect, KNError *error)
{
    error->clear();
    QFile file(path(dialect));
    if (!file.exists())
        return originalsOf(dialect);
    const auto failed = [&](const QString &reason) {
        *error = snippetError(
            KNFormat("The file of the snippets \"%@\" cannot be read: %@", file.fileName(), reason));
        return originalsOf(dialect);
    };
    if (!file.open(QIODevice::ReadOnly))
        return failed(file.errorString());
    const QByteArray data = file.read(LargestFile + 1);
    if (file.error() != QFileDevice::NoError)
        return failed(file.errorString());
    if (data.size() > LargestFile)
        return failed(QStringLiteral("It is too large."));
    const QList<KNSnippet> snippets = parse(data, error);
    return *error ? failed(error->localizedDescription()) : snippets;
}

bool KNSnippetFile::write(const KNSQLDialect &dialect, const QList<KNSnippet> &snippets, KNError *error)
{
    read(dialect, error);
    if (*error)
        return false;
    const QString file = path(dialect);
    if (snippets == dialect.snippets) {
        if (!QFile::exists(file) || QFile::remove(file))
            return true;
        *error = snippetError(KNFormat("The file of the snippets \"%@\" cannot be removed.", file));
        return false;
    }
    QString why;
    if (KNReplacePrivateFile(file, jsonOf(snippets), &why))
        return true;
    *error = snippetError(why);
    return false;
}
