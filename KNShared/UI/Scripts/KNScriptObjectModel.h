#pragma once

#include "Export/KNDatabaseScripter.h"
#include "UI/KNSharedUIExport.h"

#include <QAbstractItemModel>

/// The objects of a database below the titles of their groups, with check boxes. The box of a group checks
/// all its objects that the filter shows, in constant time for each. On the UI thread.
class KNSHAREDUI_EXPORT KNScriptObjectModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    using IsChecked = std::function<bool(const KNScriptObject &object)>;

    using QAbstractItemModel::QAbstractItemModel;

    void setObjects(const QList<KNScriptObject> &objects, const IsChecked &isChecked);
    /// Shows the objects whose names contain the text; all for an empty one. What is checked stays checked.
    void setFilter(const QString &text);
    QList<KNScriptObject> checkedObjects() const;
    /// The first checked object that is shown; invalid without one.
    QModelIndex firstChecked() const;
    qsizetype checkedCount() const { return m_checkedCount; }
    qsizetype objectCount() const { return m_objects.size(); }

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &) const override { return 1; }
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

Q_SIGNALS:
    void checkedCountChanged();

private:
    struct Object
    {
        KNScriptObject object;
        bool isChecked;
    };
    struct Group
    {
        QString title;
        QList<qsizetype> all;   ///< positions in m_objects
        QList<qsizetype> shown; ///< those among them that the filter shows
        qsizetype shownChecked = 0;
    };

    static bool isGroup(const QModelIndex &index) { return index.internalId() == 0; }
    const Group &groupOf(const QModelIndex &index) const;
    Group &groupOf(const QModelIndex &index);
    static Qt::CheckState stateOf(const Group &group);
    void check(Group &group, qsizetype shown, bool isChecked);

    std::vector<Object> m_objects;
    QList<Group> m_groups;      ///< those with objects
    QList<qsizetype> m_visible; ///< positions of the groups of which objects are shown
    QString m_filter;
    qsizetype m_checkedCount = 0;

    void applyFilter();
};
