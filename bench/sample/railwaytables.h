#pragma once

#include "bench/sample/locomotive.h"
#include "bench/sample/wagon.h"

#include <QList>
#include <QString>
#include <QStringList>

/// A class as it stands in the catalogue, with all that is needed to invent locomotives of it.
struct LocomotiveClass
{
    QString name;
    int group; // index into groupNames()
    Country country;
    QString numberPattern; // %1 stands for the running number
    int firstNumber;
    int lastNumber;
    int digits;
    bool haulsGoods;
    Appearance look;
};

[[nodiscard]] const QStringList &groupNames();

/// Index of the class whose locomotive shows the group in its picture.
[[nodiscard]] int classOfGroupPicture(int group);

[[nodiscard]] const QList<LocomotiveClass> &locomotiveClasses();

[[nodiscard]] const QStringList &placesOf(Country country);

/// Whole sentences of different lengths; any of them can follow any other.
[[nodiscard]] const QStringList &remarks();
