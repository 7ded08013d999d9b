#include "Implementations/MSSQLRecentConnection.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNNotificationCenter.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Recent/KNDBCTabColorHelper.h"
#include "Support/PrintQt.h"
#include "Support/RecordingStore.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QString Key = QStringLiteral("MSSQLRecentConnections");

using Entry = std::shared_ptr<MSSQLRecentConnection>;

Entry entry(const QString &id, const QString &host)
{
    const auto made = std::make_shared<MSSQLRecentConnection>();
    made->connectionId = id;
    made->serverHost = host;
    made->username = QStringLiteral("sa");
    return made;
}

QString stored(const QList<QVariantMap> &coders)
{
    QJsonArray array;
    for (const QVariantMap &coder : coders)
        array.append(QJsonObject::fromVariantMap(coder));
    return QString::fromLatin1(QJsonDocument(array).toJson().toBase64());
}

QJsonArray arrayIn(const QString &text)
{
    return QJsonDocument::fromJson(QByteArray::fromBase64(text.toLatin1())).array();
}

class RecentConnections : public testing::Test
{
protected:
    void TearDown() override
    {
        MSSQLRecentConnection::forgetList();
        KNKeyValueStore::setShared(nullptr);
    }

    /// As another start of the program.
    static void restart() { MSSQLRecentConnection::forgetList(); }
    static Entry at(int index)
    {
        return std::dynamic_pointer_cast<MSSQLRecentConnection>(
            MSSQLRecentConnection::RecentConnections().value(index));
    }
    static qsizetype count() { return MSSQLRecentConnection::RecentConnections().size(); }
    QJsonArray written() const { return arrayIn(m_store->texts.value(Key)); }

    const std::shared_ptr<RecordingStore> m_store = RecordingStore::install();
};

} // namespace

TEST_F(RecentConnections, ComeBackWithAllTheirFieldsAtTheNextStart)
{
    const Entry made = entry(QStringLiteral("one"), QStringLiteral("db.example,1500\\X"));
    made->alias = QStringLiteral("Production \U0001F40E");
    made->password = QStringLiteral("s3cret");
    made->serverPort = 1500;
    made->rememberPassword = true;
    made->connectionSessionParameters = {{QStringLiteral("encryption"), QStringLiteral("require")},
                                         {QStringLiteral("loginTimeout"), 30},
                                         {QStringLiteral("checkHostName"), false}};
    made->sshTunnelDetails = {QStringLiteral("gate"), 2222, QStringLiteral("me"), QStringLiteral("/k")};
    made->database = QStringLiteral("shop");
    made->dumbAuthenticationType = 1;
    MSSQLRecentConnection::UpdateRecentConnection(made);
    restart();

    ASSERT_EQ(count(), 1);
    const Entry read = at(0);
    EXPECT_NE(read, made);
    EXPECT_EQ(read->connectionId, made->connectionId);
    EXPECT_EQ(read->alias, made->alias);
    EXPECT_EQ(read->serverHost, made->serverHost);
    EXPECT_EQ(read->username, made->username);
    EXPECT_EQ(read->password, made->password);
    EXPECT_EQ(read->serverPort, made->serverPort);
    EXPECT_TRUE(read->rememberPassword);
    EXPECT_EQ(read->connectionDate, made->connectionDate);
    EXPECT_EQ(read->connectionSessionParameters, made->connectionSessionParameters);
    EXPECT_EQ(read->sshTunnelDetails, made->sshTunnelDetails);
    EXPECT_EQ(read->database, made->database);
    EXPECT_EQ(read->dumbAuthenticationType, 1);
}

TEST_F(RecentConnections, AreOneOnUpdateWhenTheirIdsDifferInLetterCaseOnly)
{
    const Entry first = entry(QStringLiteral("ab-1"), QStringLiteral("old"));
    MSSQLRecentConnection::UpdateRecentConnection(first);
    const Entry second = entry(QStringLiteral("AB-1"), QStringLiteral("new"));
    second->database = QStringLiteral("shop");
    second->dumbAuthenticationType = 1;
    second->password = QStringLiteral("p");
    MSSQLRecentConnection::UpdateRecentConnection(second);
    ASSERT_EQ(count(), 1);
    EXPECT_EQ(at(0), first);
    EXPECT_EQ(first->connectionId, QStringLiteral("ab-1"));
    EXPECT_EQ(first->serverHost, QStringLiteral("new"));
    EXPECT_EQ(first->database, QStringLiteral("shop"));
    EXPECT_EQ(first->dumbAuthenticationType, 1);
    EXPECT_EQ(first->password, QStringLiteral("p"));
    EXPECT_EQ(first->connectionDate, second->connectionDate);
}

TEST_F(RecentConnections, WithoutARememberedPasswordReadBackWithAnEmptyOne)
{
    const Entry made = entry(QStringLiteral("one"), QStringLiteral("a"));
    made->password = QStringLiteral("s3cret");
    MSSQLRecentConnection::UpdateRecentConnection(made);
    EXPECT_EQ(at(0)->password, QStringLiteral("s3cret")); // as long as the program runs
    EXPECT_FALSE(QByteArray::fromBase64(m_store->texts.value(Key).toLatin1()).contains("s3cret"));
    EXPECT_EQ(written().at(0).toObject().value(QStringLiteral("password")), QJsonValue(QStringLiteral("")));
    restart();
    EXPECT_EQ(at(0)->password, QStringLiteral(""));
    EXPECT_FALSE(at(0)->password.isNull());
}

TEST_F(RecentConnections, ReadNoPasswordThatWasStoredAgainstTheUsersWish)
{
    m_store->texts.insert(Key, stored({{{QStringLiteral("connectionId"), QStringLiteral("one")},
                                        {QStringLiteral("password"), QStringLiteral("x")}}}));
    EXPECT_EQ(at(0)->password, QStringLiteral(""));
}

TEST_F(RecentConnections, ThatAllHaveIdsAreLoadedWithoutAnyWrite)
{
    m_store->texts.insert(Key, stored({{{QStringLiteral("connectionId"), QStringLiteral("one")}},
                                       {{QStringLiteral("connectionId"), QStringLiteral("two")}}}));
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(m_store->reads, 1);
    EXPECT_TRUE(m_store->writes.empty());
}

TEST_F(RecentConnections, GetTheIdsThatTheyLackAndAreWrittenWholeByTheNextUpdate)
{
    m_store->texts.insert(Key, stored({{{QStringLiteral("serverHost"), QStringLiteral("a")}},
                                       {{QStringLiteral("connectionId"), QStringLiteral("two")}}}));
    ASSERT_EQ(count(), 2);
    EXPECT_FALSE(at(0)->connectionId.isEmpty());
    ASSERT_EQ(m_store->writes.size(), 1U);
    EXPECT_TRUE(arrayIn(m_store->writes[0]).isEmpty());
    MSSQLRecentConnection::UpdateRecentConnection(at(0));
    EXPECT_EQ(written().size(), 2);
}

TEST_F(RecentConnections, AreNotKeptAnyMoreOnceAllWereRemoved)
{
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("one"), QStringLiteral("a")));
    const auto writes = m_store->writes.size();
    MSSQLRecentConnection::removeAllRecentConnections();
    EXPECT_EQ(m_store->removals, (std::vector<QString>{QStringLiteral("MSSQLProcedureValues one"), Key}));
    EXPECT_EQ(count(), 0);
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("two"), QStringLiteral("b")));
    EXPECT_EQ(count(), 0);
    EXPECT_NO_THROW(
        MSSQLRecentConnection::RemoveConnection(entry(QStringLiteral("one"), QStringLiteral("a"))));
    EXPECT_EQ(m_store->writes.size(), writes);
    restart();
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("three"), QStringLiteral("c")));
    EXPECT_EQ(written().size(), 1);
}

TEST_F(RecentConnections, ShowTheLatestFirst)
{
    const auto dated = [](const char *id, const char *date) {
        return QVariantMap{{QStringLiteral("connectionId"), QString::fromLatin1(id)},
                           {QStringLiteral("connectionDate"), QString::fromLatin1(date)}};
    };
    m_store->texts.insert(Key, stored({dated("old", "2020-01-01T00:00:00Z"), dated("never", ""),
                                       dated("new", "2024-05-06T07:08:09.123Z")}));
    EXPECT_EQ(at(0)->connectionId, QStringLiteral("new"));
    EXPECT_EQ(at(1)->connectionId, QStringLiteral("old"));
    EXPECT_EQ(at(2)->connectionId, QStringLiteral("never"));
    MSSQLRecentConnection::UpdateRecentConnection(at(2));
    EXPECT_EQ(at(0)->connectionId, QStringLiteral("never"));
}

TEST_F(RecentConnections, CanBeRemovedOneByOne)
{
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("one"), QStringLiteral("a")));
    const Entry second = entry(QStringLiteral("two"), QStringLiteral("b"));
    MSSQLRecentConnection::UpdateRecentConnection(second);
    MSSQLRecentConnection::RemoveConnection(second);
    EXPECT_EQ(m_store->removals, std::vector<QString>{QStringLiteral("MSSQLProcedureValues two")});
    ASSERT_EQ(written().size(), 1);
    EXPECT_EQ(written().at(0).toObject().value(QStringLiteral("connectionId")),
              QJsonValue(QStringLiteral("one")));
}

TEST_F(RecentConnections, RemovingUnknownConnectionIsProgrammingError)
{
    try {
        MSSQLRecentConnection::RemoveConnection(entry(QStringLiteral("one"), QStringLiteral("a")));
        ADD_FAILURE() << "nothing stopped it";
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Connection is not available."));
        EXPECT_EQ(failure.sourcePath(), QStringLiteral("Implementations/MSSQLRecentConnection"));
    }
}

TEST_F(RecentConnections, AreNoneWhereTheStoredTextIsUnreadable)
{
    for (const QString &text : {QStringLiteral("%%%"), QStringLiteral("eyJhIjox"), QStringLiteral("")}) {
        m_store->texts.insert(Key, text);
        EXPECT_EQ(count(), 0);
        EXPECT_FALSE(MSSQLRecentConnection::list().problem());
        restart();
    }
}

TEST_F(RecentConnections, GiveTheirColoursWhenTheyAreLoaded)
{
    m_store->texts.insert(Key, stored({{{QStringLiteral("connectionId"), QStringLiteral("coloured")},
                                        {QStringLiteral("alias"), QStringLiteral("Production")}}}));
    EXPECT_EQ(count(), 1);
    EXPECT_FALSE(KNDBCTabColorHelper::colorForId(QStringLiteral("coloured")).isNull());
}

TEST_F(RecentConnections, WithoutAStoredUserNameHaveAnEmptyOne)
{
    MSSQLRecentConnection connection;
    connection.initWithCoder({{QStringLiteral("serverHost"), QStringLiteral("srv")}});
    EXPECT_FALSE(connection.username.isNull()) << "a login needs one";
    EXPECT_TRUE(connection.username.isEmpty());
}

TEST_F(RecentConnections, BecomeSettings)
{
    const Entry made = entry(QStringLiteral("one"), QStringLiteral("db.example"));
    made->alias = QStringLiteral("Production");
    made->password = QStringLiteral("p");
    made->serverPort = 1500;
    made->database = QStringLiteral("shop");
    made->connectionSessionParameters = {{QStringLiteral("encryption"), QStringLiteral("off")}};
    made->sshTunnelDetails.host = QStringLiteral("gate");
    const VantorDBCPtr details = made->createDatabaseConnectionDetails();
    EXPECT_TRUE(std::dynamic_pointer_cast<MSSQLDatabaseConnectionDetails>(details));
    EXPECT_EQ(details->connectionId(), QStringLiteral("one"));
    EXPECT_EQ(details->alias(), QStringLiteral("Production"));
    EXPECT_EQ(details->host(), QStringLiteral("db.example"));
    EXPECT_EQ(details->username(), QStringLiteral("sa"));
    EXPECT_EQ(details->password(), QStringLiteral("p"));
    EXPECT_EQ(details->database(), QStringLiteral("shop"));
    EXPECT_EQ(details->port(), 1500);
    EXPECT_EQ(details->sessionParameters(), made->connectionSessionParameters);
    EXPECT_EQ(details->sshTunnelModel(), made->sshTunnelDetails);
    EXPECT_EQ(details->copy()->sshTunnelModel(), made->sshTunnelDetails);
    EXPECT_EQ(made->hostDisplay(), QStringLiteral("Production"));
    made->alias.clear();
    EXPECT_EQ(made->hostDisplay(), QStringLiteral("db.example"));
}

TEST_F(RecentConnections, AreCopiedWhole)
{
    const Entry made = entry(QStringLiteral("one"), QStringLiteral("a"));
    made->database = QStringLiteral("shop");
    made->dumbAuthenticationType = 1;
    made->rememberPassword = true;
    made->password = QStringLiteral("p");
    const SQLRecentConnectionPtr copy = made->copy();
    EXPECT_EQ(copy->encodeWithCoder(), made->encodeWithCoder());
    copy->alias = QStringLiteral("other");
    EXPECT_TRUE(made->alias.isNull());
}

TEST_F(RecentConnections, StayInMemoryWhenTheyCannotBeWrittenAndSayWhy)
{
    int notified = 0;
    const auto token = KNNotificationCenter::defaultCenter()->addObserver(
        SQLRecentConnectionList::ChangedNotificationName,
        [&](const QString &, const QVariantMap &) { ++notified; });
    m_store->writeProblem = KNKeyValueStore::NotWritten;
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("one"), QStringLiteral("a")));
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(MSSQLRecentConnection::list().problem().code(), KNKeyValueStore::NotWritten);
    EXPECT_GT(notified, 0);

    m_store->writeProblem.reset();
    MSSQLRecentConnection::list().tryAgain();
    EXPECT_FALSE(MSSQLRecentConnection::list().problem());
    EXPECT_EQ(written().size(), 1);
}

TEST_F(RecentConnections, DoNotOverwriteLockedStore)
{
    m_store->texts.insert(Key, stored({{{QStringLiteral("connectionId"), QStringLiteral("one")},
                                        {QStringLiteral("serverHost"), QStringLiteral("stored")}},
                                       {{QStringLiteral("connectionId"), QStringLiteral("two")},
                                        {QStringLiteral("serverHost"), QStringLiteral("stored")}}}));
    m_store->readProblem = KNKeyValueStore::Refused;
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(MSSQLRecentConnection::list().problem().code(), KNKeyValueStore::Refused);
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("TWO"), QStringLiteral("newer")));
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(m_store->writes.empty());

    m_store->readProblem.reset();
    MSSQLRecentConnection::list().tryAgain();
    EXPECT_FALSE(MSSQLRecentConnection::list().problem());
    ASSERT_EQ(count(), 2);
    EXPECT_EQ(at(0)->serverHost, QStringLiteral("newer"));
    EXPECT_EQ(written().size(), 2);
}

TEST_F(RecentConnections, BeginAnewWhereTheStoreIsDamagedAndSayIt)
{
    m_store->readProblem = KNKeyValueStore::Damaged;
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(MSSQLRecentConnection::list().problem().code(), KNKeyValueStore::Damaged);
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("one"), QStringLiteral("a")));
    EXPECT_EQ(written().size(), 1);
}

TEST_F(RecentConnections, ApplyChangesMadeDuringLoading)
{
    m_store->texts.insert(Key, stored({{{QStringLiteral("connectionId"), QStringLiteral("one")}}}));
    m_store->holdsAnswersBack = true;
    EXPECT_TRUE(MSSQLRecentConnection::list().isLoading());
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("two"), QStringLiteral("b")));
    EXPECT_TRUE(m_store->writes.empty());
    m_store->holdsAnswersBack = false;
    m_store->answerPending();
    EXPECT_FALSE(MSSQLRecentConnection::list().isLoading());
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(written().size(), 2);
}

TEST_F(RecentConnections, AreWrittenOnceForAllThatChangedDuringAWrite)
{
    MSSQLRecentConnection::list();
    m_store->holdsAnswersBack = true;
    for (const char *id : {"one", "two", "three"})
        MSSQLRecentConnection::UpdateRecentConnection(entry(QString::fromLatin1(id), QStringLiteral("a")));
    EXPECT_EQ(m_store->pending.size(), 1U); // one change of the stored text at a time
    while (!m_store->pending.empty())
        m_store->answerPending();
    EXPECT_EQ(m_store->writes.size(), 2U);
    EXPECT_EQ(written().size(), 3);
}

TEST_F(RecentConnections, ThatWereBeingWrittenWhenAllWereRemovedAreRemovedToo)
{
    MSSQLRecentConnection::list();
    m_store->holdsAnswersBack = true;
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("one"), QStringLiteral("a")));
    MSSQLRecentConnection::removeAllRecentConnections();
    m_store->holdsAnswersBack = false;
    m_store->answerPending();
    EXPECT_TRUE(m_store->texts.isEmpty());
}

TEST_F(RecentConnections, ListMayBeDestroyedBeforeAnswers)
{
    m_store->holdsAnswersBack = true;
    MSSQLRecentConnection::list();
    restart();
    m_store->answerPending();
    EXPECT_TRUE(m_store->writes.empty());
}

TEST_F(RecentConnections, OfAnotherProgramAreKeptAndTakenOver)
{
    m_store->texts.insert(Key, stored({{{QStringLiteral("connectionId"), QStringLiteral("one")},
                                        {QStringLiteral("serverHost"), QStringLiteral("a")}},
                                       {{QStringLiteral("connectionId"), QStringLiteral("two")},
                                        {QStringLiteral("serverHost"), QStringLiteral("b")}},
                                       {{QStringLiteral("connectionId"), QStringLiteral("three")},
                                        {QStringLiteral("serverHost"), QStringLiteral("c")}}}));
    ASSERT_EQ(count(), 3);
    // Another program changes the second one, removes the third and adds a fourth.
    m_store->texts.insert(Key, stored({{{QStringLiteral("connectionId"), QStringLiteral("one")},
                                        {QStringLiteral("serverHost"), QStringLiteral("a")}},
                                       {{QStringLiteral("connectionId"), QStringLiteral("TWO")},
                                        {QStringLiteral("serverHost"), QStringLiteral("theirs")}},
                                       {{QStringLiteral("connectionId"), QStringLiteral("four")},
                                        {QStringLiteral("serverHost"), QStringLiteral("d")}}}));
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("one"), QStringLiteral("mine")));

    const auto hosts = [](const QJsonArray &array) {
        QStringList texts;
        for (const QJsonValue &value : array)
            texts.append(value.toObject().value(QStringLiteral("serverHost")).toString());
        texts.sort();
        return texts;
    };
    const QStringList expected = {QStringLiteral("d"), QStringLiteral("mine"), QStringLiteral("theirs")};
    EXPECT_EQ(hosts(written()), expected);
    QStringList inMemory;
    for (const SQLRecentConnectionPtr &connection : MSSQLRecentConnection::RecentConnections())
        inMemory.append(connection->serverHost);
    inMemory.sort();
    EXPECT_EQ(inMemory, expected);

    MSSQLRecentConnection::RemoveConnection(at(0)); // the latest, this program's own
    EXPECT_EQ(hosts(written()), (QStringList{QStringLiteral("d"), QStringLiteral("theirs")}));
}

TEST_F(RecentConnections, KeepTheirPasswordInMemoryWhenAnotherProgramChangesThem)
{
    const Entry made = entry(QStringLiteral("one"), QStringLiteral("a"));
    made->password = QStringLiteral("typed");
    MSSQLRecentConnection::UpdateRecentConnection(made);
    m_store->texts.insert(Key, stored({{{QStringLiteral("connectionId"), QStringLiteral("one")},
                                        {QStringLiteral("serverHost"), QStringLiteral("theirs")}}}));
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("two"), QStringLiteral("b")));
    ASSERT_EQ(count(), 2);
    EXPECT_EQ(at(1)->serverHost, QStringLiteral("theirs"));
    EXPECT_EQ(at(1)->password, QStringLiteral("typed"));
}

TEST_F(RecentConnections, ThatCouldNotBeWrittenAreWrittenByTheNextAttemptBesideThoseOfOthers)
{
    MSSQLRecentConnection::list();
    m_store->writeProblem = KNKeyValueStore::NotWritten;
    MSSQLRecentConnection::UpdateRecentConnection(entry(QStringLiteral("one"), QStringLiteral("a")));
    m_store->writeProblem.reset();
    m_store->texts.insert(Key, stored({{{QStringLiteral("connectionId"), QStringLiteral("theirs")}}}));
    MSSQLRecentConnection::list().tryAgain();
    EXPECT_EQ(written().size(), 2);
    EXPECT_EQ(count(), 2);
}

TEST_F(RecentConnections, KeepLastUseColourGroupAndProductionFlag)
{
    const Entry made = entry(QStringLiteral("one"), QStringLiteral("a"));
    made->lastUsed = QDateTime::fromString(QStringLiteral("2024-05-06T07:08:09.123Z"), Qt::ISODateWithMs);
    made->colour = QStringLiteral("#c04040");
    made->group = QStringLiteral("Shops");
    made->isProduction = true;
    MSSQLRecentConnection::UpdateRecentConnection(made);
    restart();
    ASSERT_EQ(count(), 1);
    EXPECT_EQ(at(0)->lastUsed, made->lastUsed); // an update alone is no use
    EXPECT_EQ(at(0)->colour, QStringLiteral("#c04040"));
    EXPECT_EQ(at(0)->group, QStringLiteral("Shops"));
    EXPECT_TRUE(at(0)->isProduction);
    EXPECT_TRUE(at(0)->createDatabaseConnectionDetails()->isProduction());
    EXPECT_EQ(KNDBCTabColorHelper::colorForId(QStringLiteral("one")), QStringLiteral("#c04040"));
}

TEST_F(RecentConnections, OfOlderVersionsWereLastUsedAtTheirDate)
{
    m_store->texts.insert(
        Key, stored({{{QStringLiteral("connectionId"), QStringLiteral("old")},
                      {QStringLiteral("connectionDate"), QStringLiteral("2020-01-01T00:00:00.000Z")}}}));
    ASSERT_EQ(count(), 1);
    EXPECT_EQ(at(0)->lastUsed.toUTC().date(), QDate(2020, 1, 1));
}
