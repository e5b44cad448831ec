#pragma once

#include "bench/sample/sampleplan.h"
#include "search/picturestore.h"
#include "store/statement.h"

#include <QImage>

/// Fills the open, empty catalogue in the working folder as a user would, through the program's own store: photographs
/// below "Originale", copies in the picture store, and rows. Never overwrites a file.
class SampleFiller final
{
public:
    explicit SampleFiller(SamplePlan plan);

    /// False when something could not be written; errorText() then says what, and the database stays empty.
    [[nodiscard]] bool fill();

    [[nodiscard]] QString errorText() const { return m_errorText; }

private:
    struct Painted
    {
        QByteArray original; // a JPEG file
        QImage copy;
    };

    [[nodiscard]] static Painted paint(const Motif &motif);
    bool addGroups();
    bool addModels();
    bool addEntries();
    bool addPicture(const PlannedPicture &planned, const Painted &painted);
    bool storePicture(const QString &folder, const QString &original, const QImage &copy, int entryId);
    bool writeOriginal(const QString &path, const QByteArray &bytes, const QDate &taken);
    /// The new row's id; 0 on failure.
    int insert(const QString &statement, const QList<BoundValue> &values);
    bool fail(const QString &reason);

    SamplePlan m_plan;
    PictureStore m_pictureStore;
    QList<int> m_groupIds;
    QList<int> m_modelIds;
    QList<int> m_entryIds;
    QString m_lastCopy;
    QString m_errorText;
};
