#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

#include <memory>

/// A second program that works with the catalogue in the working folder: it has run one statement there and read the
/// first row of it. What that locks is locked as long as the object lives.
class OtherConnection final
{
public:
    explicit OtherConnection(const QString &statement)
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        database.setDatabaseName(QStringLiteral("./Data/bahnakte.dat"));
        m_query = std::make_unique<QSqlQuery>(database.open() ? database : QSqlDatabase());
        m_works = m_query->exec(statement);
        m_query->next();
    }
    ~OtherConnection()
    {
        m_query.reset();
        QSqlDatabase::removeDatabase(QStringLiteral("other"));
    }
    Q_DISABLE_COPY_MOVE(OtherConnection)

    [[nodiscard]] bool works() const { return m_works; }

private:
    std::unique_ptr<QSqlQuery> m_query;
    bool m_works = false;
};
