#include "bench/sample/railwaytables.h"

using namespace Qt::StringLiterals;

namespace {

const QColor NoStripe(0, 0, 0, 0);
const QColor Green(38, 84, 58);
const QColor Brown(112, 70, 48);
const QColor SwissRed(190, 34, 40);
const QColor Silver(206, 208, 210);
const QColor OceanBlue(38, 78, 118);
const QColor Beige(218, 210, 180);
const QColor WineRed(120, 26, 34);
const QColor SignalRed(212, 60, 34);
const QColor Black(36, 36, 38);
const QColor WheelRed(176, 34, 30);
const QColor White(240, 240, 236);
const QColor Gold(226, 192, 96);

Appearance box(
    double length, const QList<int> &axles, double slope, const QColor &body, const QColor &lower, const QColor &stripe)
{
    Appearance look;
    look.length = length;
    look.axles = axles;
    look.slope = slope;
    look.body = body;
    look.lower = lower;
    look.stripe = stripe;
    return look;
}

/// Light bodies carry dark letters.
Appearance lettered(Appearance look, const QColor &lettering)
{
    look.lettering = lettering;
    return look;
}

Appearance diesel(
    double length, const QList<int> &axles, double slope, const QColor &body, const QColor &lower, const QColor &stripe)
{
    Appearance look = box(length, axles, slope, body, lower, stripe);
    look.hasPantographs = false;
    return look;
}

Appearance rodDriven(double length, const QList<int> &axles, double wheel, const QColor &body)
{
    Appearance look = box(length, axles, 0.05, body, body, NoStripe);
    look.wheel = wheel;
    look.hasRods = true;
    return look;
}

Appearance crocodile(Build build, double length, const QColor &body, const QColor &lettering)
{
    Appearance look = box(length, { 3, 3 }, 0, body, body, NoStripe);
    look.build = build;
    look.wheel = 0.66;
    look.lettering = lettering;
    return look;
}

Appearance steam(double length, const QList<int> &axles, double wheel)
{
    Appearance look = box(length, axles, 0, Black, Black, NoStripe);
    look.build = Build::Steam;
    look.wheel = wheel;
    look.frame = WheelRed;
    look.roof = QColor(70, 70, 74);
    look.hasPantographs = false;
    return look;
}

} // namespace

const QStringList &groupNames()
{
    static const QStringList names { u"Krokodile und Stangenloks"_s, u"Schweizer Drehgestell-Loks"_s,
        u"Deutsche Elloks"_s, u"Deutsche Dieselloks"_s, u"Österreichische Elloks"_s, u"Dampfloks"_s };
    return names;
}

int classOfGroupPicture(int group)
{
    const QStringList shown { u"Ce 6/8 II"_s, u"Ae 6/6"_s, u"BR 103"_s, u"V 200"_s, u"1044"_s, u"BR 01"_s };
    const QList<LocomotiveClass> &classes = locomotiveClasses();
    for (int i = 0; i < classes.size(); ++i) {
        if (classes.at(i).name == shown.at(group)) {
            return i;
        }
    }
    return 0;
}

const QList<LocomotiveClass> &locomotiveClasses()
{
    using enum Country;
    static const QList<LocomotiveClass> classes {
        { u"Ce 6/8 II"_s, 0, Switzerland, u"%1"_s, 14251, 14283, 5, true,
            crocodile(Build::Crocodile, 19.5, Brown, Gold) },
        { u"Ce 6/8 III"_s, 0, Switzerland, u"%1"_s, 14301, 14318, 5, true,
            crocodile(Build::Crocodile, 20, Green, Gold) },
        { u"Ae 3/6 I"_s, 0, Switzerland, u"%1"_s, 10601, 10714, 5, false, rodDriven(14.8, { 2, 3, 1 }, 0.8, Green) },
        { u"Be 4/6"_s, 0, Switzerland, u"%1"_s, 12303, 12342, 5, true, rodDriven(16.5, { 1, 2, 2, 1 }, 0.76, Brown) },
        { u"Ae 6/6"_s, 1, Switzerland, u"%1"_s, 11401, 11520, 5, true,
            box(18.4, { 3, 3 }, 0.35, Green, Green, Silver) },
        { u"Re 4/4 II"_s, 1, Switzerland, u"%1"_s, 11101, 11397, 5, false,
            box(15.4, { 2, 2 }, 0.3, SwissRed, SwissRed, NoStripe) },
        { u"Re 6/6"_s, 1, Switzerland, u"%1"_s, 11601, 11689, 5, true,
            box(19.3, { 2, 2, 2 }, 0.35, SwissRed, SwissRed, NoStripe) },
        { u"Re 460"_s, 1, Switzerland, u"460 %1"_s, 0, 118, 3, false,
            box(18.5, { 2, 2 }, 0.95, SwissRed, QColor(84, 88, 94), White) },
        { u"BR 103"_s, 2, Germany, u"103 %1"_s, 101, 245, 3, false,
            lettered(box(19.5, { 3, 3 }, 1.0, Beige, WineRed, NoStripe), WineRed) },
        { u"BR 110"_s, 2, Germany, u"110 %1"_s, 101, 510, 3, false,
            box(16.5, { 2, 2 }, 0.45, OceanBlue, Black, Silver) },
        { u"BR 141"_s, 2, Germany, u"141 %1"_s, 1, 451, 3, false,
            box(15.6, { 2, 2 }, 0.4, QColor(44, 116, 124), Beige, NoStripe) },
        { u"BR 150"_s, 2, Germany, u"150 %1"_s, 1, 194, 3, true, box(19.5, { 3, 3 }, 0.4, Green, Black, NoStripe) },
        { u"V 200"_s, 3, Germany, u"V 200 %1"_s, 1, 86, 3, false,
            diesel(18.5, { 2, 2 }, 0.9, SwissRed, Black, Silver) },
        { u"BR 218"_s, 3, Germany, u"218 %1"_s, 101, 499, 3, false,
            lettered(diesel(16.4, { 2, 2 }, 0.4, Beige, OceanBlue, NoStripe), OceanBlue) },
        { u"BR 232"_s, 3, Germany, u"232 %1"_s, 1, 709, 3, true,
            diesel(20.8, { 3, 3 }, 0.35, WineRed, QColor(92, 94, 98), Beige) },
        { u"1020"_s, 4, Austria, u"1020.%1"_s, 1, 47, 2, true, crocodile(Build::LongNosed, 18.6, SignalRed, White) },
        { u"1042"_s, 4, Austria, u"1042.%1"_s, 1, 60, 2, false,
            box(16.2, { 2, 2 }, 0.45, SignalRed, SignalRed, Beige) },
        { u"1044"_s, 4, Austria, u"1044.%1"_s, 1, 126, 2, false,
            box(16.1, { 2, 2 }, 0.35, SignalRed, QColor(74, 76, 80), Beige) },
        { u"BR 01"_s, 5, Germany, u"01 %1"_s, 1, 232, 3, false, steam(23.9, { 2, 3, 1 }, 1.0) },
        { u"BR 44"_s, 5, Germany, u"44 %1"_s, 65, 999, 3, true, steam(22.6, { 1, 5 }, 0.7) },
    };
    return classes;
}

const QStringList &placesOf(Country country)
{
    static const QStringList swiss { u"Erstfeld"_s, u"Göschenen"_s, u"Airolo"_s, u"Bellinzona"_s, u"Wassen"_s,
        u"Spiez"_s, u"Kandersteg"_s, u"Bern"_s, u"Olten"_s, u"Zürich HB"_s, u"Arth-Goldau"_s, u"Flüelen"_s, u"Brig"_s,
        u"Basel SBB"_s, u"Rapperswil"_s, u"Sargans"_s, u"Luzern"_s, u"Chiasso"_s };
    static const QStringList german { u"Hamburg Hbf"_s, u"Köln Hbf"_s, u"Lindau Hbf"_s, u"Kempten (Allgäu)"_s,
        u"Geislinger Steige"_s, u"Ulm Hbf"_s, u"Altenbeken"_s, u"Bebra"_s, u"Würzburg Hbf"_s, u"Offenburg"_s,
        u"Hausach (Schwarzwaldbahn)"_s, u"Saalfeld (Saale)"_s, u"Neuenmarkt-Wirsberg"_s, u"München Hbf"_s,
        u"Freilassing"_s, u"Emden"_s };
    static const QStringList austrian { u"Innsbruck Hbf"_s, u"Brennersee"_s, u"Landeck"_s, u"St. Anton am Arlberg"_s,
        u"Bludenz"_s, u"Salzburg Hbf"_s, u"Bischofshofen"_s, u"Böckstein"_s, u"Mallnitz"_s, u"Semmering"_s,
        u"Payerbach-Reichenau"_s, u"Selzthal"_s, u"Linz Hbf"_s, u"Villach Hbf"_s };
    return country == Country::Switzerland ? swiss : country == Country::Germany ? german : austrian;
}

const QStringList &remarks()
{
    static const QStringList texts { u"Frisch aus der Hauptwerkstätte."_s, u"Mit dem Schnellzug nach Süden."_s,
        u"Leerfahrt."_s, u"Schweres Kalkzugpaar mit Schiebelok."_s, u"Im schönsten Abendlicht."_s,
        u"Lange gewartet, aber das Bild ist gelungen."_s, u"Bei leichtem Schneefall."_s,
        u"Der Lokführer grüßte mit einem langen Pfiff."_s, u"Abgestellt neben dem Depot."_s,
        u"Sonderfahrt zum Jubiläum der Strecke, viele Fotografen am Damm."_s, u"Pünktlich auf die Minute."_s,
        u"Am Zugschluss lief eine zweite Maschine mit."_s, u"Ersatz für die planmäßige Lok."_s,
        u"Wappen und Zierlinien frisch poliert."_s, u"Noch mit alten Lampen und ohne Rückspiegel."_s,
        u"Standort: Wiese oberhalb des Einfahrsignals, am Nachmittag mit der Sonne im Rücken."_s,
        u"Zug mit 14 Wagen, davon zwei Speisewagen."_s, u"Letzter Einsatztag vor der Ausmusterung."_s,
        u"Nebel, erst gegen Mittag brach die Sonne durch."_s, u"Gegenlicht, Aufnahme leicht aufgehellt."_s,
        u"Kurzer Halt am Signal, daher mehrere Bilder."_s, u"Mit Vater unterwegs."_s, u"Neuer Anstrich!"_s,
        u"Güterzug mit Kesselwagen, rund 1200 t am Haken."_s };
    return texts;
}
