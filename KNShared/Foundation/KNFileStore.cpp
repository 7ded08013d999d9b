#include "Foundation/KNFileStore.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNPrivateFolder.h"
#include "Foundation/KNSerialQueue.h"
#include "Foundation/KNStoreLock.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

/// The file and its queue of pending operations.
struct KNFileStore::File
{
    explicit File(QString filePath)
        : path(std::move(filePath))
    {
    }

    QJsonObject read(KNError *error) const
    {
        QFile file(path);
        if (!file.exists())
            return {};
        if (!file.open(QIODevice::ReadOnly)) {
            *error = KNError(ErrorDomain, Refused,
                             KNFormat("The file \"%@\" could not be read: %@.", path, file.errorString()));
            return {};
        }
        const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
        if (!document.isObject())
            *error = KNError(
                ErrorDomain, Damaged,
                KNFormat("The file \"%@\" is damaged. It will be kept as \"%@\" when a new one is written.",
                         path, damagedPath()));
        return document.object();
    }

    KNError change(const std::function<void(QJsonObject &)> &apply) const
    {
        KNStoreLock lock(path + QStringLiteral(".lock"));
        if (!lock.isHeld())
            return lock.error();
        KNError problem;
        QJsonObject texts = read(&problem);
        if (problem.code() == Refused)
            return problem;
        if (problem.code() == Damaged) {
            QFile::remove(damagedPath());
            QFile::rename(path, damagedPath());
        }
        apply(texts);
        QString why;
        if (KNReplacePrivateFile(path, QJsonDocument(texts).toJson(), &why))
            return {};
        return KNError(ErrorDomain, NotWritten,
                       KNFormat("The file \"%@\" could not be written: %@.", path, why));
    }

    QString damagedPath() const { return path + QStringLiteral(".damaged"); }

    const QString path;
    KNSerialQueue queue; ///< pending operations on the file
};

KNFileStore::KNFileStore(const QString &path)
    : m_file(std::make_shared<File>(path))
{
}

KNFileStore::~KNFileStore() = default;

QString KNFileStore::name() const
{
    return KNFormat("the file %@", m_file->path);
}

void KNFileStore::textForKey(const QString &key, Read read)
{
    m_file->queue.add([file = m_file, key, read = std::move(read)] {
        KNError error;
        const QJsonValue value = file->read(&error).value(key);
        const QString text = value.isString() ? value.toString() : QString();
        KNDispatch::mainQueue([read, text, error] { read(text, error); });
    });
}

void KNFileStore::setText(const QString &key, const QString &text, Done done)
{
    m_file->queue.add([file = m_file, key, text, done = std::move(done)] {
        const KNError error = file->change([&](QJsonObject &texts) { texts.insert(key, text); });
        KNDispatch::mainQueue([done, error] { done(error); });
    });
}

void KNFileStore::changeText(const QString &key, Change change, Read changed)
{
    m_file->queue.add([file = m_file, key, change = std::move(change), changed = std::move(changed)] {
        QString text;
        const KNError error = file->change([&](QJsonObject &texts) {
            text = change(texts.value(key).toString());
            texts.insert(key, text);
        });
        KNDispatch::mainQueue([changed, text, error] { changed(text, error); });
    });
}

void KNFileStore::removeKey(const QString &key, Done done)
{
    m_file->queue.add([file = m_file, key, done = std::move(done)] {
        const KNError error = file->change([&](QJsonObject &texts) { texts.remove(key); });
        KNDispatch::mainQueue([done, error] { done(error); });
    });
}
