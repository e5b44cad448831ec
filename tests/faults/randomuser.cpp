#include "tests/faults/randomuser.h"

#include "app/startup.h"
#include "browser/picturescene.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QVariant>

#include <utility>

using namespace Qt::StringLiterals;

RandomUser::RandomUser(quint32 seed, Manner manner, const QString &photographs)
    : m_random(seed)
    , m_manner(manner)
    , m_photographs(photographs)
    , m_lastDay(int(seed % 2))
{
    const auto always = [this](const QString &title, void (RandomUser::*answer)(QWidget *)) {
        m_deeds.insert(title, 0);
        m_answers.always(title, [this, title, answer](QWidget *form) {
            ++m_deeds[title];
            (this->*answer)(form);
            leave(form);
        });
    };
    always(u"Benutzereingabe"_s, &RandomUser::answerOptions);
    always(u"Edit Bahnito-Eintrag"_s, &RandomUser::answerEntry);
    always(u"Edit Bahnito-Bild"_s, &RandomUser::answerPicture);
    always(u"Baureihe-Gruppen (mit Bild)"_s, &RandomUser::answerGroups);
    always(u"Baureihe-Gruppen"_s, &RandomUser::answerMove);
    always(u"Baureihen"_s, &RandomUser::answerClasses);
    Startup::makeDataFolders();
    if (!Startup::openCatalogue()) {
        qFatal("the catalogue could not be opened");
    }
    m_browser = std::make_unique<BrowserWindow>();
}

RandomUser::~RandomUser()
{
    m_browser.reset();
    QSqlDatabase::removeDatabase(QLatin1StringView(QSqlDatabase::defaultConnection));
}

QList<Belief> RandomUser::takeBeliefs()
{
    return std::exchange(m_beliefs, {});
}

void RandomUser::act()
{
    m_answers.setConsent(m_manner == Work && chance(50));
    const int kind = m_random.bounded(100);
    if (kind < 25) {
        searchSomeGroup();
    } else if (kind < 88) {
        pressSomeButton();
    } else if (kind < 91) {
        pickSomeColor();
    } else {
        maintainGroups();
    }
    QApplication::processEvents();
}

QStringList RandomUser::deedLines(const Deeds &deeds)
{
    QStringList lines;
    for (const auto &[deed, times] : deeds.asKeyValueRange()) {
        lines.append(QString::number(times) + u' ' + deed);
    }
    return lines;
}

void RandomUser::addDeeds(Deeds &sum, const QStringList &lines)
{
    for (const QString &line : lines) {
        sum[line.section(u' ', 1)] += line.section(u' ', 0, 0).toInt();
    }
}

int RandomUser::countEntries()
{
    QSqlQuery query(u"SELECT COUNT(*) FROM loc_seen"_s);
    return query.next() ? query.value(0).toInt() : 0;
}

void RandomUser::searchSomeGroup()
{
    QList<QToolButton *> groups = m_browser->window().findChildren<QToolButton *>();
    groups.removeIf([](const QToolButton *button) {
        return !button->objectName().startsWith(u"group"_s) || button->objectName() == u"groupColumn"_s;
    });
    if (!groups.isEmpty()) {
        QTest::mouseClick(groups.at(m_random.bounded(groups.size())), Qt::LeftButton);
    }
}

void RandomUser::pressSomeButton()
{
    QList<QGraphicsItem *> buttons = m_browser->canvas().items();
    buttons.removeIf([this](QGraphicsItem *item) {
        const auto *button = qgraphicsitem_cast<ButtonItem *>(item);
        const bool deletes = button && button->kind() == ButtonKind::Delete;
        return !button || (deletes && m_random.bounded(100) < 80); // else nothing would be left soon
    });
    if (buttons.isEmpty()) {
        searchSomeGroup();
        return;
    }
    press(static_cast<ButtonItem *>(buttons.at(m_random.bounded(buttons.size()))));
}

void RandomUser::press(ButtonItem *button)
{
    const ButtonKind kind = button->kind();
    const int before = kind == ButtonKind::Delete ? countEntries() : 0;
    m_browser->click(button); // and it may be gone
    m_deeds[u"listed"_s] += kind == ButtonKind::Count ? 1 : 0;
    m_deeds[u"deleted"_s] += kind == ButtonKind::Delete && countEntries() < before ? 1 : 0;
}

void RandomUser::pickSomeColor()
{
    const QList<QAction *> colors = m_browser->window().findChild<QToolButton *>(u"colorButton"_s)->menu()->actions();
    colors.at(m_random.bounded(colors.size()))->trigger();
}

void RandomUser::maintainGroups()
{
    const QList<QAction *> actions = m_browser->window().findChildren<QAction *>();
    for (QAction *action : actions) {
        if (action->text() == u"Baureihe-Gruppen bearbeiten"_s) {
            action->trigger();
            return;
        }
    }
}
