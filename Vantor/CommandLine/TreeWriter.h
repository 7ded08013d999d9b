#pragma once

#include "CommandLine/TreeLoader.h"

#include <QJsonObject>

/// Writes entries of a tree and their descendants to standard output, and loads them when needed.
class TreeWriter
{
public:
    struct Options
    {
        int depth = 1; ///< number of levels below the entry
        bool showDetails = false;
        bool asJson = false;
    };

    TreeWriter(TreeLoader &loader, const Options &options)
        : m_loader(loader)
        , m_options(options)
    {
    }

    void write(const TreeLoader::Entry &entry);
    /// Whether an error entry was written instead of some children.
    bool hadErrors() const { return m_hadErrors; }

private:
    void writeLines(const TreeLoader::Entry &entry, int level);
    QJsonObject json(const TreeLoader::Entry &entry, int level);
    bool isError(const TreeLoader::Entry &entry);

    TreeLoader &m_loader;
    const Options m_options;
    bool m_hadErrors = false;
};
