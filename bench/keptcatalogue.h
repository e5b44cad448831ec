#pragma once

#include <QString>

/// A catalogue that is kept between runs. What is measured writes into it, and a run may be killed half-way: so every
/// run begins with an untouched copy of the database, and without the files that an earlier one has left.
class KeptCatalogue final
{
public:
    /// `folder` is, or becomes, the working folder of the measurements.
    explicit KeptCatalogue(QString folder);

    /// False for one whose making was given up half-way.
    [[nodiscard]] bool isMade() const;

    /// Empties the folder, so that a catalogue can be made in it.
    void clear() const;

    /// To be called when the catalogue is filled and closed.
    [[nodiscard]] bool noteMade() const;

    /// Makes the catalogue what it was when it was made.
    [[nodiscard]] bool restore() const;

private:
    void removeLeftCopies() const;

    QString m_folder;
    QString m_database;
    QString m_untouched;
};
