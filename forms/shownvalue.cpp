#include "forms/shownvalue.h"

#include "search/textcut.h"

#include <QTextDocument>

QVariant shownValue(const QVariant &stored, int role)
{
    if (role == Qt::ToolTipRole) {
        return Qt::convertFromPlainText(shownText(stored.toString()));
    }
    const bool isText = stored.typeId() == QMetaType::QString || stored.typeId() == QMetaType::QByteArray;
    return role == Qt::DisplayRole && isText ? shownText(stored.toString()) : stored;
}
