#pragma once

#include <QDate>
#include <QTemporaryDir>
#include <QVariant>

/// A fresh working folder with an open catalogue in it: the folders, the tables and the default settings.
/// The destructor closes the database and goes back to the former working folder.
class TestCatalogue final
{
public:
    enum Content { Tables, FoldersOnly };

    explicit TestCatalogue(Content content = Tables);
    ~TestCatalogue();
    Q_DISABLE_COPY_MOVE(TestCatalogue)

    /// Absolute path of `name` in the working folder.
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }

    /// Rows put in directly; each returns the new id.
    int addGroup(const QString &name, const QString &picturePath = QStringLiteral(""));
    int addModel(const QString &name, int groupId);
    int addEntry(const QString &number, int modelId, const QString &place = QStringLiteral("Bern"),
        const QDate &seen = QDate(2001, 5, 17), const QString &comment = QStringLiteral("Kommentar"));
    /// A picture row with a real JPEG copy in Folder001 and a real source file beside the catalogue.
    int addPicture(int entryId);

    /// First column of the first row of a statement.
    [[nodiscard]] QVariant value(const QString &statement) const;

private:
    QString m_formerFolder;
    QTemporaryDir m_folder;
    int m_pictures = 0;
};
