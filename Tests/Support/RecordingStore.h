#pragma once

#include "Foundation/KNKeyValueStore.h"

#include <QMap>

#include <vector>

/// Keeps texts in memory, answers at once or when the test says so, and fails as the test has prepared it.
class RecordingStore : public KNKeyValueStore
{
public:
    /// Puts a new one in place and returns it.
    static std::shared_ptr<RecordingStore> install()
    {
        auto store = std::make_shared<RecordingStore>();
        setShared(store);
        return store;
    }

    QString name() const override { return QStringLiteral("the test's memory"); }

    void textForKey(const QString &key, Read read) override
    {
        ++reads;
        answer([this, key, read] {
            const KNError error = problem(readProblem);
            read(error ? QString() : texts.value(key), error);
        });
    }
    void setText(const QString &key, const QString &text, Done done) override
    {
        writes.push_back(text);
        answer([this, key, text, done] {
            const KNError error = problem(writeProblem);
            if (!error)
                texts.insert(key, text);
            done(error);
        });
    }
    void removeKey(const QString &key, Done done) override
    {
        removals.push_back(key);
        answer([this, key, done] {
            const KNError error = problem(writeProblem);
            if (!error)
                texts.remove(key);
            done(error);
        });
    }
    /// Gives the answers that were held back.
    void answerPending()
    {
        const auto answers = std::exchange(pending, {});
        for (const auto &give : answers)
            give();
    }

    QMap<QString, QString> texts;
    int reads = 0;
    std::vector<QString> writes;
    std::vector<QString> removals;
    std::optional<Problem> readProblem;
    std::optional<Problem> writeProblem;
    bool holdsAnswersBack = false;
    std::vector<std::function<void()>> pending;

private:
    static KNError problem(const std::optional<Problem> &code)
    {
        return code ? KNError(ErrorDomain, *code, QStringLiteral("As the test wants it.")) : KNError();
    }
    void answer(std::function<void()> give)
    {
        if (holdsAnswersBack)
            pending.push_back(std::move(give));
        else
            give();
    }
};
