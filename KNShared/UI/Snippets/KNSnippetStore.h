#pragma once

#include "Foundation/KNError.h"
#include "SQL/Snippets/KNSnippet.h"
#include "UI/KNSharedUIExport.h"

#include <QList>

#include <functional>

class VantorDBC;
struct KNSQLDialect;

/// The snippets of a language, shared by all editors. The user's file is read and written in the background.
/// On the UI thread.
class KNSHAREDUI_EXPORT KNSnippetStore
{
public:
    /// The store of a dialect, which is never destroyed. Starts to read the user's file at the first call.
    static KNSnippetStore &forDialect(const KNSQLDialect &dialect);

    /// The store for the language of these settings; null if it has no dialect.
    static KNSnippetStore *forSettings(const VantorDBC &details);

    /// The user's snippets; those of the dialect until they are read, or if they cannot be.
    const QList<KNSnippet> &snippets() const { return m_snippets; }
    const QList<KNSnippet> &originals() const;
    const KNSQLDialect &dialect() const { return m_dialect; }

    /// Reads the user's file again. `loaded` receives the reason if it cannot be read.
    void load(std::function<void(const KNError &error)> loaded = {});
    /// Writes the user's file. `saved` receives the reason if that fails; the snippets are the old ones then.
    void save(const QList<KNSnippet> &snippets, std::function<void(const KNError &error)> saved);

private:
    explicit KNSnippetStore(const KNSQLDialect &dialect);

    const KNSQLDialect &m_dialect;
    QList<KNSnippet> m_snippets;
};
