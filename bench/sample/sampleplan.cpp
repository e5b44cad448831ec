#include "bench/sample/sampleplan.h"

#include "search/textcut.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>

using namespace Qt::StringLiterals;

namespace {

constexpr int NumbersPerClass = 4;
constexpr int FirstYear = 1979;
constexpr int LastYear = 2018;

/// An entry shows the near views first.
enum class Scene { Passing, Station, Portrait, Lake, Viaduct, Meadow };
constexpr std::array NearScenes { Scene::Passing, Scene::Station };
constexpr std::array OtherScenes { Scene::Portrait, Scene::Lake, Scene::Viaduct, Scene::Meadow };

View viewOf(Scene scene)
{
    switch (scene) {
    case Scene::Station:
        return View::Station;
    case Scene::Portrait:
        return View::Portrait;
    case Scene::Viaduct:
        return View::Viaduct;
    case Scene::Lake:
    case Scene::Meadow:
        return View::Landscape;
    case Scene::Passing:
        break;
    }
    return View::Passing;
}

QString nameOf(Scene scene)
{
    const QStringList names { u"Strecke"_s, u"Bahnhof"_s, u"Front"_s, u"Seeufer"_s, u"Viadukt"_s, u"Wiese"_s };
    return names.at(int(scene));
}

/// Grows the plan entry by entry; all random numbers come from one generator, in one order.
class Planner final
{
public:
    explicit Planner(quint32 seed)
        : m_random(seed)
    {
        inventLocomotives();
    }

    [[nodiscard]] SamplePlan plan(int entries);

private:
    struct Engine
    {
        QString number;
        Season season; // in which this collection has met it
    };
    using PictureKey = std::tuple<Scene, int, QString, Season>; // sorted: near scenes first

    void inventLocomotives();
    void planEntry(int index);
    void planPictures(int index, const Engine &engine);
    void addPicture(int entry, Scene scene, const Engine &engine);
    [[nodiscard]] QString comment(bool isLong);
    [[nodiscard]] QDate dateIn(Season season);
    [[nodiscard]] int pictureCount();
    [[nodiscard]] PlannedPicture picture(Scene scene, int locomotiveClass, const QString &number, Season season);
    template <typename List> [[nodiscard]] const auto &oneOf(const List &list)
    {
        return list.at(m_random.bounded(int(list.size())));
    }

    QRandomGenerator m_random;
    QList<QList<Engine>> m_engines; // by class
    std::map<PictureKey, PlannedPicture> m_pictures;
    SamplePlan m_plan;
};

void Planner::inventLocomotives()
{
    for (const LocomotiveClass &type : locomotiveClasses()) {
        QList<Engine> engines;
        const auto first = Season(m_random.bounded(4));
        const auto other = Season((int(first) + m_random.bounded(1, 4)) % 4);
        const int part = (type.lastNumber - type.firstNumber + 1) / NumbersPerClass;
        for (int i = 0; i < NumbersPerClass; ++i) {
            const int number = type.firstNumber + i * part + m_random.bounded(part);
            engines.append(
                { type.numberPattern.arg(number, type.digits, 10, QChar(u'0')), i % 2 == 0 ? first : other });
        }
        m_engines.append(engines);
    }
}

SamplePlan Planner::plan(int entries)
{
    for (int group = 0; group < groupNames().size(); ++group) {
        const int shown = classOfGroupPicture(group);
        m_plan.groupPictures.append(picture(Scene::Passing, shown, m_engines.at(shown).first().number, Season::Summer));
        m_plan.groupPictures.last().fileName = u"Gruppen/%1.jpg"_s.arg(groupNames().at(group));
        m_plan.groupPictures.last().motif.light = Light::Noon;
    }
    for (int i = 0; i < entries; ++i) {
        planEntry(i);
    }
    for (const auto &[key, planned] : m_pictures) {
        m_plan.pictures.append(planned);
    }
    return m_plan;
}

void Planner::planEntry(int index)
{
    const int classes = int(locomotiveClasses().size());
    PlannedEntry entry;
    entry.locomotiveClass = index < classes ? index : m_random.bounded(classes); // each class has at least one
    const Engine &engine = oneOf(m_engines.at(entry.locomotiveClass));
    entry.number = engine.number;
    entry.place = oneOf(placesOf(locomotiveClasses().at(entry.locomotiveClass).country));
    entry.comment = comment(index % 7 == 3);
    entry.seen = dateIn(engine.season);
    m_plan.entries.append(entry);
    planPictures(index, engine);
}

void Planner::planPictures(int index, const Engine &engine)
{
    const int count = pictureCount();
    QList<Scene> scenes(NearScenes.begin(), NearScenes.end());
    if (m_random.bounded(2) == 0) {
        std::swap(scenes[0], scenes[1]);
    }
    QList<Scene> others(OtherScenes.begin(), OtherScenes.end());
    while (!others.isEmpty()) {
        scenes.append(others.takeAt(m_random.bounded(int(others.size()))));
    }
    for (int i = 0; i < count; ++i) {
        addPicture(index, scenes.at(i), engine);
    }
}

void Planner::addPicture(int entry, Scene scene, const Engine &engine)
{
    const int type = m_plan.entries.at(entry).locomotiveClass;
    const PictureKey key(scene, type, engine.number, engine.season); // its other entries share the photograph
    auto found = m_pictures.find(key);
    if (found == m_pictures.end()) {
        found = m_pictures.emplace(key, picture(scene, type, engine.number, engine.season)).first;
    }
    found->second.entries.append(entry);
}

PlannedPicture Planner::picture(Scene scene, int locomotiveClass, const QString &number, Season season)
{
    PlannedPicture planned;
    planned.motif = { locomotiveClass, number, viewOf(scene), season, Light(m_random.bounded(4)), m_random.generate() };
    QString folder = locomotiveClasses().at(locomotiveClass).name;
    folder.replace(u'/', u'-');
    planned.fileName = u"%1/%2 %3 %4.jpg"_s.arg(folder, number, nameOf(scene), QString::number(int(season) + 1));
    return planned;
}

QString Planner::comment(bool isLong)
{
    QStringList left = remarks();
    QString text;
    const int few = m_random.bounded(12) == 0 ? 0 : m_random.bounded(1, 4);
    int sentences = isLong ? int(left.size()) : few; // a long one takes all that still fit
    while (sentences-- > 0) {
        const QString sentence = left.takeAt(m_random.bounded(int(left.size())));
        const QString longer = text.isEmpty() ? sentence : text + u' ' + sentence;
        text = longer.size() <= TextLimit::Comment ? longer : text;
    }
    return text;
}

QDate Planner::dateIn(Season season)
{
    const int month = (2 + 3 * int(season) + m_random.bounded(3)) % 12 + 1; // spring begins in March
    return QDate(m_random.bounded(FirstYear, LastYear + 1), month, m_random.bounded(1, 29));
}

int Planner::pictureCount()
{
    constexpr std::array shares { 12, 34, 60, 76, 87, 94, 100 }; // percent with at most so many pictures
    const int drawn = m_random.bounded(100);
    int count = 0;
    while (drawn >= shares.at(size_t(count))) {
        ++count;
    }
    return count;
}

} // namespace

SamplePlan planSample(int entries, quint32 seed)
{
    return Planner(seed).plan(entries);
}
