#pragma once

#include "forms/storedpicture.h"

#include <QTableView>

class QSqlQueryModel;

/// Lists the pictures of one entry, by the paths of the copy and of the user's own file, for choosing one of them.
/// It is read to its end at once, because a half-read list would keep the database file locked for writers.
class PictureTable final : public QTableView
{
    Q_OBJECT

public:
    explicit PictureTable(QWidget *parent = nullptr);

    /// Reads the entry's pictures anew; none of them is chosen then.
    void showEntry(int entryId);

    struct Choice
    {
        int id;
        StoredPicture picture; // its paths only
    };

    /// The marked row, or none.
    [[nodiscard]] std::optional<Choice> choice() const;

Q_SIGNALS:
    /// A row was clicked, or chosen with the keyboard.
    void rowChosen();

private:
    void prepareView();

    QSqlQueryModel *m_model;
};
